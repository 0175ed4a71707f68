// From the engine's dictionary entries to words that a person reads.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// The word of a dictionary entry without the mark of an alternative pronunciation: "read(2)" is "read".
/// \return empty for what isn't spoken: sentence marks ("<s>"), silence ("<sil>"), noises ("[NOISE]",
///         "++COUGH++").
std::optional<std::string> spokenWord(std::string_view entry);

}  // namespace korvane
