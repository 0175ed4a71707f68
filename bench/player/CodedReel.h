// A reel in which each picture and each sound tells where in the source it comes from.
#pragma once

#include <filesystem>
#include <vector>

#include "editor/ExportBundle.h"

namespace korvane::bench {

/// A word that begins and ends with pictures of the source.
struct CodedWord {
    int firstPicture = 0;
    int pictures = 0;
};

struct CodedReel {
    int picturesPerSecond = 30;
    std::vector<CodedWord> words;
    ExportBundle bundle;

    /// From the first picture of the first word to the last of the last.
    int lapPictures() const;
};

/// The reel of a clip that is made once in `folder`: 12 words of 0.3 to 0.5 s, not in the order of the clip.
/// \throws std::runtime_error when the reel is not as long as its words
CodedReel makeCodedReel(const std::filesystem::path& folder, int picturesPerSecond);

}  // namespace korvane::bench
