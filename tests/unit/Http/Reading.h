// The complete result of reading received bytes, as text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Reads a request from bytes that arrive in pieces, cut at these places in ascending order. They
// end at an unreadable page, and move with each piece. Returns one of
//   partial
//   partial, awaits a sign
//   refused <status>
//   <bytes>: <method> <path> <query> <version> {<name>=<value>}... <body>; <what else is so>
// A missing text is "-". The last part lists what applies: closes, head, awaits a sign.
std::string Read(std::string_view bytes, const std::vector<size_t>& cuts = {});

// Like Read, and records a failure when the result changes if the bytes are cut at any single place
// or arrive one by one, or if other bytes follow a complete or refused request.
std::string ReadHoweverCut(std::string_view bytes);
