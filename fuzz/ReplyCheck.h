// Reads the service's replies as a browser does: the exact head and the chunks after it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits the replies into their bodies. Anything but complete replies, each with one of the two
// heads, well-formed chunks and a body in braces with a result, is a finding.
std::vector<std::string> TakeReplies(std::string_view sent);
