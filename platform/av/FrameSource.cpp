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
        {
            std::unique_lock lock(state_.mutex);
            state_.clock.wait(lock, state_.changed, kNoClockTime,
                              [&] { return state_.stopping || state_.wantsFrame(); });
            if (state_.stopping)
                return;
            job = nextJob();
        }
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
    if (!state_.running || state_.nextFrameLap != state_.lap)
        return;
    const MediaTime current = state_.grid.atOrBefore(state_.timeAt(state_.clock.now()));
    while (state_.nextFrameTime < current && current < state_.duration) {
        state_.nextFrameTime = state_.grid.after(state_.nextFrameTime);
        ++state_.statistics.droppedFrames;
    }
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
