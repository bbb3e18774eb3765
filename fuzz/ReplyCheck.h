// What a browser makes of the service's replies: the exact head and the chunks behind it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Takes the replies apart into their bodies. Anything but whole replies, one behind the other, each
// with one of the two heads, well-formed chunks and a body in braces with a result, is a finding.
std::vector<std::string> TakeReplies(std::string_view sent);
