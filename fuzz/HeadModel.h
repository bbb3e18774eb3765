// A strict reader of request heads, to check the HTTP library's tolerant one against.
#pragma once

#include <cstddef>
#include <string_view>

// False when a well-formed head announces a body of another length. A head that is not well-formed,
// or announces its body's length in another way or several times, says nothing.
bool IsPossibleBody(std::string_view head, size_t nBody);
