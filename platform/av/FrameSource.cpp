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
    skipLateFrames();
    const Job job{state_.frameGeneration, state_.nextFrameLap, state_.nextFrameTime, state_.frameWidth,
                  state_.frameHeight};
    state_.nextFrameTime = state_.grid.after(job.time);
    if (state_.nextFrameTime >= state_.duration) {
        ++state_.nextFrameLap;
        state_.nextFrameTime = state_.line.loop().value_or(kZeroTime);
    }
    return job;
}

void FrameSource::skipLateFrames() {
    if (!state_.running)
        return;
    const std::int64_t lap = state_.lap + (state_.crossedEndAt ? 1 : 0);
    if (state_.nextFrameLap < lap) {
        skipTo(state_.duration);
        state_.nextFrameLap = lap;
        state_.nextFrameTime = state_.line.lapStartTime(lap);
    }
    if (state_.nextFrameLap > lap)
        return;
    const double position = state_.positionAtTime(state_.clock.now());
    const MediaTime current = state_.grid.atOrBefore(state_.line.timeAt(lap, position));
    if (current < state_.duration)
        skipTo(current);
}

void FrameSource::skipTo(MediaTime time) {
    for (; state_.nextFrameTime < time; ++state_.statistics.droppedFrames)
        state_.nextFrameTime = state_.grid.after(state_.nextFrameTime);
}

ReadyFrame FrameSource::make(const Job& job) {
    const VideoComposition& video = state_.item->videoComposition();
    const double scale = canvasScale(video.renderSize, job.width, job.height);
    if (!reader_)
        reader_ = std::make_unique<CompositionVideoReader>(state_.item->composition(), video, scale,
                                                           decodingThreads(), stop_);
    reader_->setCanvasScale(scale);
    const auto canvas = reader_->render(reader_->pictureAt(job.time));
    ReadyFrame ready;
    ready.lap = job.lap;
    ready.frame.time = job.time;
    ready.frame.picture =
        display_.convert(*canvas, static_cast<int>(std::lround(video.renderSize.width * scale)),
                         static_cast<int>(std::lround(video.renderSize.height * scale)));
    return ready;
}

void FrameSource::deliver(const Job& job, ReadyFrame frame) {
    const std::scoped_lock lock(state_.mutex);
    if (state_.frameGeneration != job.generation)
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
