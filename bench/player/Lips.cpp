// Lip sync as it comes out of real threads in real time, and on a clock that makes an hour pass in a minute.
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "bench/Statistics.h"
#include "bench/player/Jobs.h"
#include "bench/player/LoopingPlayer.h"
#include "platform/sound/PulseOutputFactory.h"
#include "platform/tasks/QtMainQueue.h"
#include "tests/platform/av/ScriptedPlayback.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane::bench {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kPlayerThreads = 3;
constexpr ClockTime kFineStep = 2ms;
constexpr ClockTime kCoarseStep = 50ms;
constexpr double kAnHourOfTape = 4000.0;

void print(const std::string& name, double value) {
    std::printf("value\t%s\t%.4f\n", name.c_str(), value);
}

double farthest(const std::vector<double>& values) {
    double worst = 0.0;
    for (const double v : values)
        worst = std::abs(v) > std::abs(worst) ? v : worst;
    return worst;
}

void print(const std::string& when, const LipSync& lips, const CodedReel& reel) {
    if (lips.atCuts.empty())
        throw std::runtime_error("no cut was both seen and heard");
    print(when + "cuts", static_cast<double>(lips.atCuts.size()));
    print(when + "unheard", lips.unheard);
    print(when + "median ms", 1e3 * summarize(lips.atCuts).median);
    print(when + "worst ms", 1e3 * farthest(lips.atCuts));
    print(when + "loops", static_cast<double>(lips.soundHoles.size()));
    print(when + "picture hole", farthest(lips.pictureHoles) * reel.picturesPerSecond);
    print(when + "sound hole", farthest(lips.soundHoles));
}

/// Without what was shown before it played.
std::vector<ShownPicture> fromSecondLap(std::vector<ShownPicture> shown, const CodedReel& reel) {
    const auto isFirst = [&](const ShownPicture& p) { return p.number == reel.words[0].firstPicture; };
    const auto first = std::ranges::find_if(shown, isFirst);
    shown.erase(shown.begin(), first);
    return shown;
}

/// A player on time that is moved by hand.
class Simulation {
  public:
    explicit Simulation(const CodedReel& reel) : player_(queue_, clock_, outputs_, reel, pictures_) {
        settle();
    }
    void run(ClockTime time, ClockTime step) {
        for (ClockTime done{0}; done < time; done += step) {
            clock_.advance(step);
            settle();
        }
    }
    LipSync lipsFor(ClockTime time, const CodedReel& reel) {
        pictures_->take();
        run(time, kFineStep);
        return compare(pictures_->take(), sound_, reel);
    }
    int laps() const { return player_.laps(); }

  private:
    void settle() {
        do
            clock_.settle(kPlayerThreads);
        while (queue_.runAll() > 0);
    }

    ScriptedClock clock_;
    EvenOutputs devices_{clock_};
    PlayedSound sound_{30.0};
    OverheardOutputs outputs_{devices_, sound_};
    CollectingMainQueue queue_;
    std::shared_ptr<PictureLog> pictures_ = std::make_shared<PictureLog>(clock_);
    LoopingPlayer player_;
};

}  // namespace

void measureLips(const std::string& folder, int picturesPerSecond, double seconds, bool device) {
    const CodedReel reel = makeCodedReel(folder, picturesPerSecond);
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    PulseOutputFactory machine;
    EvenOutputs even(clock);
    PlayedSound sound(kAnHourOfTape);
    OverheardOutputs outputs(device ? static_cast<AudioOutputFactory&>(machine) : even, sound);
    const auto pictures = std::make_shared<PictureLog>(clock);
    LoopingPlayer player(queue, clock, outputs, reel, pictures);
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1e3), &loop, &QEventLoop::quit);
    loop.exec();
    print("", compare(fromSecondLap(pictures->take(), reel), sound, reel), reel);
    const PlayerStatistics statistics = player.player().statistics();
    print("shown", static_cast<double>(statistics.shownFrames));
    print("dropped", static_cast<double>(statistics.droppedFrames));
    print("underruns", static_cast<double>(statistics.soundUnderruns));
    print("dry", sound.timesDry());
}

void measureDrift(const std::string& folder, double minutes) {
    const CodedReel reel = makeCodedReel(folder, 30);
    Simulation simulation(reel);
    simulation.run(2s, kFineStep);
    print("before ", simulation.lipsFor(12s, reel), reel);
    simulation.run(
        std::chrono::duration_cast<ClockTime>(std::chrono::duration<double, std::ratio<60>>(minutes)),
        kCoarseStep);
    print("after ", simulation.lipsFor(12s, reel), reel);
    print("laps", simulation.laps());
}

}  // namespace korvane::bench
