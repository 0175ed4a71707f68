// The service that takes the sound out of a video, so that it can be recognised. It keeps nothing between
// calls, so any number of calls may run at once on any threads. The main queue given to it must outlive it.
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

#include "media/VideoProcessorPlatform.h"
#include "platform/tasks/MainQueue.h"

namespace korvane {

struct ExtractedAudio {
    std::filesystem::path url;  ///< a new file; whoever asked for it deletes it
    double duration = 0.0;      ///< seconds of the source video
};

class VideoProcessor {
  public:
    explicit VideoProcessor(MainQueue& mainQueue,
                            VideoProcessorPlatform platform = realVideoProcessorPlatform());
    virtual ~VideoProcessor() = default;

    /// Writes the video's sound to a new M4A file in the temporary folder; time 0 of the file is time 0 of
    /// the video. Blocks.
    /// \param onProgress  0 to 1, never falling, through the main queue; the last one on success is 1.0 and
    /// may come after the return.
    /// \throws ProcessingError, MediaError, or CancellationError once `stop` is requested; then `onProgress`
    /// is not called any more. When it throws, the session has left no file.
    virtual ExtractedAudio extractAudio(const std::filesystem::path& from,
                                        std::function<void(double)> onProgress, std::stop_token stop) const;

  private:
    MainQueue& mainQueue_;
    VideoProcessorPlatform platform_;
};

}  // namespace korvane
