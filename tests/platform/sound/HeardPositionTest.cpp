// Whether what an output says to be heard is heard: against a device whose other end is in the test's hands.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

#include "platform/av/HeardClock.h"
#include "tests/platform/sound/Listening.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr int kRate = 48'000;
constexpr int kRamp = 20'000;  // each sample tells its own place, within a stretch of 0.4 s

ClockTime now() {
    return SteadyPlaybackClock().now();
}

/// A device that is a pipe: a sample is played when it is taken out, which is done here, at an even pace.
class PipeDevice {
  public:
    explicit PipeDevice(int bufferBytes) {
        const QString path = folder_.filePath(QStringLiteral("device"));
        module_ = soundServer->ask({QStringLiteral("load-module"), QStringLiteral("module-pipe-sink"),
                                    QStringLiteral("sink_name=pipe"), QStringLiteral("file=%1").arg(path),
                                    QStringLiteral("format=s16le"), QStringLiteral("rate=48000"),
                                    QStringLiteral("channels=1")});
        soundServer->ask({QStringLiteral("set-default-sink"), QStringLiteral("pipe")});
        fd_ = ::open(path.toUtf8().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        fcntl(fd_, F_SETPIPE_SZ, bufferBytes);
        thread_ = std::jthread([this](std::stop_token stop) { play(stop); });
    }
    ~PipeDevice() {
        thread_.request_stop();
        thread_.join();
        soundServer->ask({QStringLiteral("unload-module"), module_});
        ::close(fd_);
    }
    bool isThere() const { return fd_ >= 0; }

    struct Played {
        ClockTime at;
        int place;  ///< of the sample played last, modulo kRamp
    };
    /// What was played when, beginning with the first sound.
    std::vector<Played> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(played_, {});
    }

  private:
    void play(const std::stop_token& stop) {
        const ClockTime began = now();
        std::int64_t done = 0;
        std::vector<std::int16_t> samples;
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(2ms);
            const ClockTime at = now();
            const std::int64_t due = (at - began).count() * kRate / 1'000'000'000;
            samples.resize(static_cast<std::size_t>(due - done));
            const auto got = ::read(fd_, samples.data(), samples.size() * 2);
            done = due;  // a device that got nothing has played silence
            if (got < 2)
                continue;
            const int last = samples[static_cast<std::size_t>(got / 2 - 1)];
            const std::scoped_lock lock(mutex_);
            if (last != 0)
                played_.push_back({at, last - 1});
        }
    }

    QTemporaryDir folder_;
    QString module_;
    int fd_ = -1;
    std::mutex mutex_;
    std::vector<Played> played_;
    std::jthread thread_;
};

struct HeardPosition : testing::TestWithParam<int> {
    void TearDown() override {
        soundServer->kill();
        ASSERT_TRUE(soundServer->start());
    }
};

TEST_P(HeardPosition, isWhatTheDevicePlaysThen) {
    PipeDevice device(GetParam());
    ASSERT_TRUE(device.isThere());
    PulseOutputFactory factory;
    std::unique_ptr<AudioOutput> output;
    ASSERT_TRUE(until([&] { return (output = factory.open({kRate, 1})) != nullptr; }));
    HeardClock clock(kRate);
    std::int64_t written = 0;
    std::vector<double> off;
    int underruns = 0;
    const ClockTime end = now() + 4s;
    while (now() < end) {
        const HeardFrames heard = output->heard();
        const double at = clock.framesAt(now(), heard, written);
        const ClockTime then = now();
        underruns = heard.underruns;
        std::vector<float> samples(static_cast<std::size_t>(output->room()));
        for (float& sample : samples)
            sample = static_cast<float>(written++ % kRamp + 1) / 32768.0F;
        output->write(samples);
        for (const auto& played : device.take()) {
            // From the moment it was played to this one, in frames.
            const double since = std::chrono::duration<double>(then - played.at).count() * kRate;
            const double difference = std::remainder(at - since - played.place, kRamp);
            if (now() > end - 3s)
                off.push_back(difference * 1000.0 / kRate);
        }
        std::this_thread::sleep_for(3ms);
    }
    ASSERT_GT(off.size(), 200U);
    std::ranges::sort(off);
    std::printf("heard against played: median %.2f ms, from %.2f to %.2f ms, %d underruns\n",
                off[off.size() / 2], off.front(), off.back(), underruns);
    EXPECT_NEAR(off[off.size() / 2], 0.0, 8.0);
    EXPECT_GT(off[off.size() / 20], -20.0);
    EXPECT_LT(off[off.size() * 19 / 20], 20.0);
}

// A device near by, and one that holds a third of a second, as wireless ones do.
INSTANTIATE_TEST_SUITE_P(Devices, HeardPosition, testing::Values(8'192, 32'768));

}  // namespace
}  // namespace korvane
