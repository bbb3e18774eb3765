// A private network namespace for one piece of a test: fixed ports are free in it, and nothing that
// is sent leaves it.
#pragma once

#include <functional>

// The address of eth0 in the namespace, and its broadcast address.
constexpr char kEth0Ip[] = "192.0.2.5";
constexpr char kEth0Broadcast[] = "192.0.2.255";

enum class Eth0 { kNone, kUp };

// Runs a function on a thread of its own inside a new namespace with "lo" up and, if asked for, an
// "eth0". Returns false, without running it, where such a namespace cannot be had.
bool RunInNetSpace(Eth0 eth0, const std::function<void()>& fn);
