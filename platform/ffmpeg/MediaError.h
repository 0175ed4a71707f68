// The error of everything that reads or writes media.
#pragma once

#include <stdexcept>
#include <string>

namespace korvane {

/// One sentence for a person: what was being done, to which file, what is wrong, and what helps where
/// something does. Codes of the media libraries never leave platform/ffmpeg as integers.
class MediaError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace korvane
