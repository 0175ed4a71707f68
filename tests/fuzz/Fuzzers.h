// One round of each fuzzer. A round ends normally or with an error that has a sentence for a person;
// everything else ends the process.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/Mutation.h"

namespace korvane::fuzz {

/// Small clips of every container and kind of stream that a source may have, made once.
class MediaFuzzer {
  public:
    explicit MediaFuzzer(const std::filesystem::path& folder);
    /// Damages one of the clips, takes its sound out and makes a reel of it. What went in stays at
    /// `inputPath`.
    void round(Random& random);
    const std::filesystem::path& inputPath() const { return input_; }

  private:
    std::filesystem::path folder_;
    std::filesystem::path input_;
    std::vector<std::string> seeds_;
};

/// Damages word files, styles and selections, and reads them.
class TextFuzzer {
  public:
    void round(Random& random);
};

}  // namespace korvane::fuzz
