// What becomes of received bytes, as a text that shows all of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Reads a request from bytes that arrive in pieces, cut at these places in ascending order. They
// end at a page that cannot be read, and lie elsewhere with each piece. Returns one of
//   partial
//   partial, awaits a sign
//   refused <status>
//   <bytes>: <method> <path> <query> <version> {<name>=<value>}... <body>; <what else is so>
// A text that is not there is "-". What else is so: closes, head, awaits a sign.
std::string Read(std::string_view bytes, const std::vector<size_t>& cuts = {});

// As Read, and records a failure when another result comes from bytes that are cut at any single
// place, or arrive one by one, or from other bytes behind a whole or a refused request.
std::string ReadHoweverCut(std::string_view bytes);
