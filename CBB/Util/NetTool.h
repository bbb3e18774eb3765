// What the system knows of a network interface.
#pragma once

#include <cstdint>

// Looks up the IPv4 address of a named interface ("eth0"; at most 15 characters count). Returns 0
// with the address in network order; -1 when there is no such interface or it has no address; -2
// when the name is null. uiAddr is touched on success only. For any thread: one lookup at a time.
int GetIfAddr(const char* pszIfName, uint32_t& uiAddr);
