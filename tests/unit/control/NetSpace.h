// A private network namespace for a part of a test: fixed ports are free in it, and nothing sent
// leaves it.
#pragma once

#include <functional>

// The address of eth0 in the namespace, and its broadcast address.
constexpr char kEth0Ip[] = "192.0.2.5";
constexpr char kEth0Broadcast[] = "192.0.2.255";

enum class Eth0 { kNone, kUp };

// Runs a function on its own thread inside a new namespace with "lo" up and, if requested, an
// "eth0". Returns false without running it where such a namespace is not available.
bool RunInNetSpace(Eth0 eth0, const std::function<void()>& fn);
