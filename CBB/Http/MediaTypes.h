// The media types that are sent to browsers. Any thread.
#pragma once

#include <string>

// The type of a file by its extension, with the charset if it is text. Extensions that the pages do
// not use get the HTTP library's type.
std::string MediaType(const std::string& strPath);
