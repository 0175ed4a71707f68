#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "platform/av/CompositionReader.h"
#include "platform/av/SessionBase.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/MovieWriter.h"
#include "platform/tasks/BoundedQueue.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// Enough to keep the stages busy side by side; a canvas picture is 3 MB.
constexpr std::size_t kQueuedPictures = 4;
// What waits between decoding and drawing; pictures of a large source take 25 MB each.
constexpr double kQueuedSourceBytes = 40e6;

/// The encoder has the larger part of the work. More decoding threads than it leaves cores only hold more
/// pictures.
int decodingThreads() {
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()) / 2, 1, 8);
}

std::size_t queuedSourcePictures(const Composition& composition) {
    double largest = 1.0;
    for (const CompositionTrack* track : composition.tracks(MediaType::video))
        for (const TrackSegment& s : track->segments())
            largest = std::max(largest, s.track.naturalSize.width * s.track.naturalSize.height);
    constexpr double kBytesAPixel = 3.0;  // 4:2:0 in 16-bit words
    return static_cast<std::size_t>(
        std::clamp(kQueuedSourceBytes / (largest * kBytesAPixel), 1.0, double(kQueuedPictures)));
}

int wholeRate(MediaTime frameDuration) {
    if (frameDuration <= kZeroTime || frameDuration.timescale() % frameDuration.value() != 0)
        throw MediaError("The frame rate of the video can't be written.");
    return static_cast<int>(frameDuration.timescale() / frameDuration.value());
}

/// Output pictures stand at start + i / rate, for as long as i / rate < duration.
std::int64_t pictureCount(MediaTime duration, int rate) {
    return duration.toUnits(rate, Rounding::up);
}

/// The composition as it is: the first source's own size and orientation away, its own rate.
VideoComposition plainVideoComposition(const Composition& composition) {
    const auto tracks = composition.tracks(MediaType::video);
    if (tracks.empty() || tracks.front()->segments().empty())
        throw MediaError("There is no picture to export.");
    const AssetTrack& source = tracks.front()->segments().front().track;
    const double rate = std::max(1.0, std::round(static_cast<double>(source.nominalFrameRate)));
    VideoComposition plain;
    plain.renderSize = {std::ceil(source.naturalSize.width / 2) * 2,
                        std::ceil(source.naturalSize.height / 2) * 2};
    plain.frameDuration = MediaTime(1, static_cast<std::int32_t>(rate));
    plain.instructions.push_back({{kZeroTime, composition.duration()}, {{tracks.front()->trackID(), {}}}});
    return plain;
}

/// Three stages side by side: decoding, drawing, and (on the caller's thread) sound, encoding and writing.
/// The first failure stops the other stages and is what comes out.
class ExportPipeline {
  public:
    ExportPipeline(CompositionVideoReader& video, MediaTime start, std::int64_t count, int rate,
                   std::size_t queuedSources, const std::stop_token& stop)
        : video_(video),
          start_(start),
          count_(count),
          rate_(rate),
          decoded_(queuedSources),
          forwarded_(stop, [this] { stop_.request_stop(); }),
          decoder_([this] { guarded([this] { decodeAll(); }); }),
          drawer_([this] { guarded([this] { drawAll(); }); }) {}

    ~ExportPipeline() { stop_.request_stop(); }

    /// The next canvas picture. \throws what a stage threw.
    std::shared_ptr<AVFrame> next() {
        std::optional<std::shared_ptr<AVFrame>> picture;
        try {
            picture = drawn_.pop(stop_.get_token());
        } catch (const CancellationError&) {
            rethrowFailure();
            throw;
        }
        if (!picture)
            throw MediaError("The export ended before its last picture.");
        return *picture;
    }

  private:
    template <class Stage>
    void guarded(Stage stage) {
        try {
            stage();
        } catch (...) {
            {
                const std::scoped_lock lock(mutex_);
                if (!failure_ && !stop_.stop_requested())
                    failure_ = std::current_exception();
            }
            stop_.request_stop();
        }
    }

    void decodeAll() {
        for (std::int64_t i = 0; i < count_; ++i)
            decoded_.push(video_.pictureAt(start_ + MediaTime(i, rate_)), stop_.get_token());
        decoded_.close();
    }

    void drawAll() {
        while (const auto picture = decoded_.pop(stop_.get_token()))
            drawn_.push(video_.render(*picture), stop_.get_token());
        drawn_.close();
    }

    void rethrowFailure() {
        const std::scoped_lock lock(mutex_);
        if (failure_)
            std::rethrow_exception(failure_);
    }

    CompositionVideoReader& video_;
    MediaTime start_;
    std::int64_t count_;
    int rate_;
    std::stop_source stop_;
    BoundedQueue<TimedPicture> decoded_;
    BoundedQueue<std::shared_ptr<AVFrame>> drawn_{kQueuedPictures};
    std::mutex mutex_;
    std::exception_ptr failure_;
    std::stop_callback<std::function<void()>> forwarded_;
    std::jthread decoder_;  // joined before what it uses goes
    std::jthread drawer_;
};

class MovieExportSession final : public SessionBase {
  public:
    explicit MovieExportSession(std::shared_ptr<const Composition> composition)
        : composition_(std::move(composition)) {}

    std::vector<FileType> supportedFileTypes() const override { return {FileType::mp4}; }

  protected:
    void write(const std::stop_token& stop) override {
        const VideoComposition video =
            videoComposition ? *videoComposition : plainVideoComposition(*composition_);
        const TimeRange range = timeRange.value_or(TimeRange{kZeroTime, composition_->duration()});
        if (range.isEmpty())
            throw MediaError(
                "None of the chosen words lies inside the video, so there is nothing to export.");
        const int rate = wholeRate(video.frameDuration);
        const std::int64_t pictures = pictureCount(range.duration, rate);
        const auto sound = CompositionAudioReader::preferredFormat(*composition_);
        const std::int64_t firstSample = sound ? range.start.toUnits(sound->rateHz) : 0;
        const std::int64_t lastSample = sound ? range.end().toUnits(sound->rateHz) : 0;

        CompositionVideoReader videoReader(composition_, video, 1.0, decodingThreads(), stop);
        std::optional<CompositionAudioReader> audioReader;
        if (sound)
            audioReader.emplace(composition_, audioMix, *sound, stop);
        const auto writer = MovieWriter::open(
            outputPath, VideoEncoding{videoReader.width(), videoReader.height(), rate}, sound, stop);

        ExportPipeline pipeline(videoReader, range.start, pictures, rate, queuedSourcePictures(*composition_),
                                stop);
        std::vector<float> samples;
        std::int64_t position = firstSample;
        for (std::int64_t i = 0; i < pictures; ++i) {
            if (sound) {
                // The sound of this picture's time; the last picture may be cut short by the end.
                const std::int64_t until =
                    std::min(lastSample, firstSample + MediaTime(i + 1, rate).toUnits(sound->rateHz));
                samples.resize(static_cast<std::size_t>((until - position) * sound->channels));
                audioReader->read(position, samples);
                writer->writeAudio(samples);
                position = until;
            }
            writer->writeVideo(pipeline.next());
            report(static_cast<double>(i + 1) / static_cast<double>(pictures + 1));
        }
        writer->finish();
    }

  private:
    std::shared_ptr<const Composition> composition_;
};

}  // namespace

std::unique_ptr<ExportSession> makeMovieExportSession(std::shared_ptr<const Composition> composition) {
    return std::make_unique<MovieExportSession>(std::move(composition));
}

}  // namespace korvane
