#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

#include "platform/av/PlayerSources.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// Until somebody says at what size pictures are shown.
constexpr double kDefaultHeight = 720.0;
// A quarter of a minute at 30 pictures a second and the size that a preview usually has.
constexpr std::size_t kMostKeptBytes = 128'000'000;
// What takes longer to finish would keep the screen from the next pictures for too long.
const MediaTime kMostToFinish(1, 1);

/// One for each core that playing leaves; more only hold more pictures.
int decodingThreads() {
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4);
}

/// Canvas pixels per unit of the render size, so that the canvas fits into the size asked for.
double canvasScale(Size renderSize, int width, int height) {
    if (width <= 0 || height <= 0)
        return std::min(1.0, kDefaultHeight / renderSize.height);
    return std::min(width / renderSize.width, height / renderSize.height);
}

}  // namespace

FrameSource::FrameSource(PlayerState& state, std::stop_token stop)
    : state_(state), stop_(std::move(stop)), kept_(kMostKeptBytes) {}

void FrameSource::run() {
    while (true) {
        Job job;
        std::deque<ReadyFrame> discarded;
        {
            std::unique_lock lock(state_.mutex);
            state_.clock.wait(lock, state_.changed, kNoClockTime,
                              [&] { return state_.stopping || state_.wantsFrame(); });
            if (state_.stopping)
                return;
            job = nextJob();
            discarded.swap(state_.discarded);
        }
        discarded.clear();
        try {
            deliver(job, make(job));
        } catch (const CancellationError&) {
            return;
        } catch (...) {
            fail(job, std::current_exception());
        }
    }
}

FrameSource::Job FrameSource::nextJob() {
    const bool isLate = finishesStretch();
    if (!isLate)
        skipLateFrames();
    const Job job{state_.frameGeneration,
                  state_.nextFrameLap,
                  state_.nextFrameTime,
                  state_.frameWidth,
                  state_.frameHeight,
                  state_.goesOnAtEnd() ? state_.line.loop() : std::nullopt,
                  isLate};
    state_.frameInWork = job.lap == 0 ? std::optional(job.time) : std::nullopt;
    state_.nextFrameTime = state_.grid.after(job.time);
    if (state_.nextFrameTime >= state_.duration) {
        ++state_.nextFrameLap;
        state_.nextFrameTime = state_.line.loop().value_or(kZeroTime);
    }
    if (isLate)
        ++state_.statistics.droppedFrames;
    return job;
}

std::int64_t FrameSource::currentLap() const {
    return state_.lap + (state_.crossedEndAt ? 1 : 0);
}

/// When the picture that is due now begins, in the current lap.
MediaTime FrameSource::currentFrame() const {
    const double position = state_.positionAtTime(state_.clock.now());
    return state_.grid.atOrBefore(state_.line.timeAt(currentLap(), position));
}

/// The next picture's time is over, but its stretch is in hand and short: to come back for the rest of it
/// would cost as much as all of it.
bool FrameSource::finishesStretch() const {
    if (!state_.running || stretchGeneration_ != state_.frameGeneration ||
        !stretch_.contains(state_.nextFrameTime) || stretch_.end() - state_.nextFrameTime > kMostToFinish)
        return false;
    return state_.nextFrameLap < currentLap() ||
           (state_.nextFrameLap == currentLap() && state_.nextFrameTime < currentFrame());
}

void FrameSource::skipLateFrames() {
    if (!state_.running)
        return;
    const std::int64_t lap = currentLap();
    if (state_.nextFrameLap < lap) {
        skipTo(state_.duration);
        state_.nextFrameLap = lap;
        state_.nextFrameTime = state_.line.lapStartTime(lap);
    }
    if (state_.nextFrameLap > lap)
        return;
    if (const MediaTime current = currentFrame(); current < state_.duration)
        skipTo(current);
}

void FrameSource::skipTo(MediaTime time) {
    for (; state_.nextFrameTime < time; ++state_.statistics.droppedFrames)
        state_.nextFrameTime = state_.grid.after(state_.nextFrameTime);
}

ReadyFrame FrameSource::make(const Job& job) {
    const VideoComposition& video = state_.item->videoComposition();
    const double scale = canvasScale(video.renderSize, job.width, job.height);
    const auto canvas = canvasOf(job, scale);
    ReadyFrame ready;
    if (job.isLate)
        return ready;
    ready.lap = job.lap;
    ready.frame.time = job.time;
    ready.frame.picture =
        display_.convert(*canvas, static_cast<int>(std::lround(video.renderSize.width * scale)),
                         static_cast<int>(std::lround(video.renderSize.height * scale)));
    return ready;
}

KeptPictures::Canvas FrameSource::canvasOf(const Job& job, double scale) {
    if (scale != keptScale_ || job.loop != keptLoop_)
        kept_.clear();
    keptScale_ = scale;
    keptLoop_ = job.loop;
    if (auto kept = kept_.find(job.time))
        return kept;
    stretchGeneration_ = -1;
    if (!reader_)
        reader_ = std::make_unique<CompositionVideoReader>(
            state_.item->composition(), state_.item->videoComposition(), scale, decodingThreads(), stop_);
    reader_->setCanvasScale(scale);
    const std::int64_t before = reader_->decodedPictures();
    const TimedPicture picture = reader_->pictureAt(job.time);
    KeptPictures::Canvas canvas = reader_->render(picture);
    offer(job, picture, canvas, reader_->decodedPictures() - before);
    return canvas;
}

void FrameSource::offer(const Job& job, const TimedPicture& picture, KeptPictures::Canvas canvas,
                        std::int64_t decoded) {
    if (!job.loop || job.time < *job.loop || !picture.segment)
        return;
    const MediaTime step = state_.grid.frameDuration;  // never changes
    const MediaTime& length = picture.segment->target.duration;
    const std::int64_t pictures = length.toUnits(step.timescale(), Rounding::up) / step.value() + 1;
    if (!kept_.offer(picture.segment->target.start, pictures, job.time, std::move(canvas), decoded))
        return;
    stretchGeneration_ = job.generation;
    stretch_ = picture.segment->target;
}

void FrameSource::deliver(const Job& job, ReadyFrame frame) {
    const std::scoped_lock lock(state_.mutex);
    if (state_.frameGeneration != job.generation)
        return;
    state_.frameInWork.reset();
    if (job.isLate)
        return;
    frame.due = state_.line.positionOf(job.lap, job.time);
    state_.frameBytes += frame.frame.picture->bytes();
    state_.frames.push_back(std::move(frame));
    state_.notify();
}

void FrameSource::fail(const Job& job, std::exception_ptr error) {
    reader_.reset();  // the next seek tries afresh
    state_.item->fail(std::move(error));
    const std::scoped_lock lock(state_.mutex);
    if (state_.frameGeneration != job.generation)
        return;
    state_.picturesFailed = true;
    state_.notify();
}

}  // namespace korvane
