// The media types that browsers are told. Any thread.
#pragma once

#include <string>

// The type of a file by the end of its name, with the charset where it is text. The HTTP library's
// type for names that the pages do not use.
std::string MediaType(const std::string& strPath);
