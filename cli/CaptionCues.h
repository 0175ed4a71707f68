// Grouping of words into the cues of a caption file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Transcript.h"

namespace korvane::cli {

/// Shown in [startMs, endMs), milliseconds of the source video; never empty, and over when a later cue
/// starts.
struct CaptionCue {
    long long startMs = 0;
    long long endMs = 0;
    std::string text;
    friend bool operator==(const CaptionCue&, const CaptionCue&) = default;
};

/// Words in order, a few to a cue: a cue ends at a pause of 0.6 s, behind the end of a sentence, and before
/// it grows beyond 7 words, 42 characters or 5 s, which is what a reader takes in at a glance. Words that are
/// blank or have no usable time are left out; a word of no length gets 1 ms.
std::vector<CaptionCue> groupIntoCues(const Transcript& transcript);

/// What stands between two words as the language is written: Chinese and Japanese have no blanks, but between
/// two words in Latin letters ("iPhone Pro").
std::string_view wordSeparator(std::string_view language, std::string_view before, std::string_view after);

/// The word on one line, without blanks at its ends.
std::string tidyWord(std::string_view text);

}  // namespace korvane::cli
