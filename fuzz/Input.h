// What every fuzz target needs: the check of its invariants, and splitting of the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Ends the process, which counts as a finding, when an invariant does not hold.
void Require(bool bHolds);

// Discards standard output, once: the traces would drown the run.
void SilenceTraces();

// The input as text.
std::string_view AsText(const uint8_t* pData, size_t nSize);

// The pieces between the marks; one piece when there is none.
std::vector<std::string_view> Split(std::string_view text, char cMark);

// A copy exactly as long as the text, so that a read past its end is detected; bTerminated adds a
// 0.
std::unique_ptr<char[]> ExactCopy(std::string_view text, bool bTerminated);
