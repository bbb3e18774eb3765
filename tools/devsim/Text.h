// Small text helpers of the simulator: addresses, numbers, escaped bytes.
#pragma once

#include <netinet/in.h>

#include <string>
#include <string_view>

// "127.0.0.1:6000".
std::string AddrText(const sockaddr_in& addr);

// Fills addr from dotted text and a port. Returns 0, or -1 when the text is not an IPv4 address.
int MakeAddr(const std::string& strAddr, uint16_t usPort, sockaddr_in& addr);

// Decimal digits only, from 0 to nMax. Returns 0 with the value, or -1.
int ReadNumber(std::string_view text, long nMax, long& nValue);

// The bytes between double quotes: printable ASCII unchanged, with \ before " and \, and everything
// else as \xNN, so that the bytes can be recovered from the text.
std::string Quote(std::string_view bytes);

// Reads a whole file. Returns 0, or -1.
int ReadFile(const std::string& strPath, std::string& strBytes);
