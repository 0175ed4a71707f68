// The JSON form of a transcript:
//
//     {"language": "en-US", "duration": 61.2, "words": [{"text": "So", "start": 0.31, "end": 0.52}, ...]}
//
// Only "words" is required; a bare array of words is read too. What is written can be read again as it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/Transcript.h"

namespace korvane::cli {

/// Larger files are no transcripts: 20,000 words take about 1 MB.
inline constexpr std::size_t largestWordsFileBytes = 64u << 20;

/// Checks form only: every word has a text and two finite numbers. Times that overlap, run backwards or are
/// negative are handed on, because a recogniser or a person may mean them.
/// \param name  of the file; begins the sentence of the error.
/// \throws Failure naming the word and the key that are wrong, and what is wrong with them.
Transcript parseWordsFile(std::string_view name, std::string_view json);

/// One word a line, keys in the order shown above, numbers in their shortest exact form.
std::string formatWordsFile(const Transcript& transcript);

}  // namespace korvane::cli
