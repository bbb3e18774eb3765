// The device application of the fuzz targets, in place of the UDP socket: it answers with a
// script's replies, one per exchange, and passes every datagram to a check.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

// Sets the replies of the coming exchanges, in order. Where there is none, or an empty one, the
// device does not answer. The texts must live until the last exchange.
void SetDeviceScript(std::vector<std::string_view> replies);

// Sets the function that gets each datagram sent.
void SetDatagramCheck(std::function<void(std::string_view message)> pfnCheck);

// Sets the service up once: its device's address and a server thread that never runs.
void StartServiceOnce();
