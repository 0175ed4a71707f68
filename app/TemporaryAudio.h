// The sound that was taken out of a video, for as long as it is needed.
#pragma once

#include <filesystem>
#include <system_error>
#include <utility>

#include "media/VideoProcessor.h"

namespace korvane {

/// Owns the file: whoever lets go of it deletes it, also a worker's result that nobody takes any more. A file
/// that can't be deleted stays behind silently.
class TemporaryAudio {
  public:
    explicit TemporaryAudio(ExtractedAudio audio) : audio_(std::move(audio)) {}
    TemporaryAudio(TemporaryAudio&& other) noexcept : audio_(std::exchange(other.audio_, {})) {}
    TemporaryAudio& operator=(TemporaryAudio&&) = delete;
    ~TemporaryAudio() {
        std::error_code ignored;
        if (!audio_.url.empty())
            std::filesystem::remove(audio_.url, ignored);
    }

    const std::filesystem::path& url() const { return audio_.url; }
    double duration() const { return audio_.duration; }

  private:
    ExtractedAudio audio_;
};

}  // namespace korvane
