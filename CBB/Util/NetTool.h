// IPv4 addresses: those of a network interface, and their text form.
#pragma once

#include <cstdint>
#include <string>

// Looks up the IPv4 address of a named interface ("eth0"; at most 15 characters count). Returns 0
// with the address in network order; -1 when there is no such interface or it has no address; -2
// when the name is null. uiAddr is touched on success only. Any thread; lookups are serialised.
int GetIfAddr(const char* pszIfName, uint32_t& uiAddr);

// Looks up the IPv4 broadcast address of a named interface (at most 15 characters count). Returns 0
// with the address in network order, or -1; uiAddr is touched on success only. Any thread.
int GetIfBrdAddr(const char* pszIfName, uint32_t& uiAddr);

// The dotted text of an address in network order, as from inet_ntoa. Any thread.
std::string AddressText(uint32_t uiAddr);
