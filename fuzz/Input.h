// What every fuzz target needs: its invariants' check and the input taken apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Ends the process, as a finding, when an invariant does not hold.
void Require(bool bHolds);

// Sends the standard output to nowhere, once: the traces would drown the run.
void SilenceTraces();

// The input as text.
std::string_view AsText(const uint8_t* pData, size_t nSize);

// The pieces between the marks; one piece when there is none.
std::vector<std::string_view> Split(std::string_view text, char cMark);

// A copy exactly as long as the text, so that a read beyond it is seen; with bTerminated one 0
// more.
std::unique_ptr<char[]> ExactCopy(std::string_view text, bool bTerminated);
