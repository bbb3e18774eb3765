// The device application of the fuzz targets, in the place of the UDP socket: it answers with the
// replies of a script, one per exchange, and shows every datagram to a check.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

// Sets the replies of the coming exchanges, in order. Where there is none, or an empty one, the
// device stays silent. The texts must live until the last exchange.
void SetDeviceScript(std::vector<std::string_view> replies);

// Sets what is called with each datagram that is sent.
void SetDatagramCheck(std::function<void(std::string_view message)> pfnCheck);

// Sets the service up once: its device's address and a server thread that never runs.
void StartServiceOnce();
