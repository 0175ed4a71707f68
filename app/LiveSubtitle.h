// Which line of a reel is to be read at a moment. Pure; any thread.
#pragma once

#include <string>
#include <vector>

#include "editor/SubtitleEntry.h"

namespace korvane {

/// \param seconds  in the time of the entries; need not be finite.
/// \return the text of the first entry with start <= seconds < end; empty where there is none.
std::string subtitleAt(const std::vector<SubtitleEntry>& entries, double seconds);

}  // namespace korvane
