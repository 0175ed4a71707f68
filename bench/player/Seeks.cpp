// Exact seeks over a whole video, each beside the least that decoding it takes.
#include <ctime>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <mutex>
#include <random>
#include <stdexcept>
#include <thread>

#include "bench/player/Jobs.h"
#include "bench/player/PlainSeek.h"
#include "bench/player/PlayedSound.h"
#include "editor/VideoEditor.h"
#include "platform/av/Player.h"
#include "platform/tasks/QtMainQueue.h"

namespace korvane::bench {
namespace {

constexpr int kRestMs = 400;
/// What the picture is shown at in a window of usual size.
constexpr int kWidth = 405;
constexpr int kHeight = 720;

struct Taken {
    double wallMs;
    double processorMs;  ///< of all threads
};

Taken taken(const std::function<void()>& work) {
    const auto processorMs = [] {
        timespec used{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
        return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
    };
    const double before = processorMs();
    const auto begin = std::chrono::steady_clock::now();
    work();
    return {std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count(),
            processorMs() - before};
}

class LastPicture final : public FrameConsumer {
  public:
    void show(const PlayerFrame& frame) override {
        const std::scoped_lock lock(mutex_);
        time_ = frame.time.seconds();
    }
    double time() {
        const std::scoped_lock lock(mutex_);
        return time_;
    }

  private:
    std::mutex mutex_;
    double time_ = -1.0;
};

/// Pictures and sound that were made ready behind a seek are not part of the next.
void rest() {
    QEventLoop loop;
    QTimer::singleShot(kRestMs, &loop, &QEventLoop::quit);
    loop.exec();
}

void seekOnce(Player& player, double seconds) {
    bool answered = false;
    player.seek(MediaTime(std::llround(seconds * 600.0), 600), kZeroTime, kZeroTime,
                [&](bool) { answered = true; });
    while (!answered)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

}  // namespace

void measureSeeks(const std::string& video, double videoSeconds, int count) {
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    EvenOutputs outputs(clock);
    const ExportBundle bundle =
        VideoEditor(queue, silentLog())
            .buildBundle(video, {SpeechSegment("all", 0.0, videoSeconds)}, SubtitleSettings{}, {});
    Player player(queue, clock, outputs, bundle.previewPlayerItem());
    const auto picture = std::make_shared<LastPicture>();
    player.setFrameSize(kWidth, kHeight);
    player.setFrameConsumer(picture);
    PlainSeek plain(video, std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4));
    const double length = bundle.previewPlayerItem()->videoComposition().frameDuration.seconds();

    std::mt19937 random(5);
    for (int i = 0; i <= count; ++i) {
        const double to = (videoSeconds - 1.0) * static_cast<double>(random()) / 4294967296.0;
        rest();
        double there = 0.0;
        const Taken theirs = taken([&] { there = plain.to(to); });
        const Taken ours = taken([&] { seekOnce(player, to); });
        const double shown = picture->time();
        if (std::abs(shown - there) > length || shown > to + 1e-3 || shown <= to - length - 1e-3)
            throw std::runtime_error("a seek to " + std::to_string(to) + " shows the picture of " +
                                     std::to_string(shown));
        if (i > 0)  // the first one makes decoders
            std::printf("seek\t%.3f\t%.3f\t%.3f\t%.3f\n", ours.wallMs, ours.processorMs, theirs.wallMs,
                        theirs.processorMs);
    }
}

}  // namespace korvane::bench
