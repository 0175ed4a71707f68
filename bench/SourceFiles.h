// The recordings that are measured on. Each is made once and kept.
#pragma once

#include <filesystem>

namespace korvane::bench {

class SourceFiles {
  public:
    /// \param folder  where they are kept; made when missing. An hour of video takes 7 GB.
    explicit SourceFiles(std::filesystem::path folder);

    /// A minute as from a phone: 1920 x 1080 at 30 pictures a second, H.264 High at 15 Mbit/s without
    /// pictures that look ahead, a key picture every second, 48 kHz stereo AAC.
    std::filesystem::path minute() const;
    /// The minute's picture so many times over, with sound without a seam.
    std::filesystem::path video(int minutes) const;
    /// A picture of the same kind for so many minutes at a tenth of the bit rate, so that an hour takes one
    /// GB.
    std::filesystem::path light(int minutes) const;
    /// The minute's pictures in half the time.
    std::filesystem::path halfMinuteAt60() const;
    /// The minute with x264's defaults: a key picture every 8 s, pictures that look ahead.
    std::filesystem::path rareKeys() const;
    /// An M4A file of synthetic English.
    std::filesystem::path speech(int minutes) const;
    /// The same sound behind a still picture, as an MP4 file.
    std::filesystem::path spokenVideo(int minutes) const;

    const std::filesystem::path& folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
};

}  // namespace korvane::bench
