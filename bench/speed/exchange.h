// What every program of the speed comparison does for one endpoint: the daemon's system calls for
// one device exchange, and parsing the reply once. No traces, no records, no checks.
#pragma once

#include <string>

// Sends the request to the device application at 127.0.0.1:6000 from local port 4999 on eth0's
// address, waits for one reply and parses it. False when there is no reply or no XML in it.
bool ExchangeAndParse(const std::string& strRequest);
