// The platform addresses that the pages never show, and the placeholders that they show instead.
//
// Each deployment has its own. The values here are examples (documentation ranges for the
// platforms, a private range for the placeholders); -DWEBCTRL_ADDRESS_TABLE=<header> builds with
// another file of this form. MaskSvrAddr.cpp checks the lengths at compile time.
#pragma once

// {platform address, placeholder}, compared in this order.
constexpr const char* kAddressTable[4][2] = {
    {"203.0.113.101", "10.255.255.101"},
    {"203.0.113.102", "10.255.255.102"},
    {"198.51.100.7", "10.255.255.103"},
    {"198.51.100.8", "10.255.255.104"},
};
