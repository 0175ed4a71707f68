#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QThread>
#include <cmath>

#include "platform/av/HeardClock.h"
#include "platform/sound/PulseOutputFactory.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/platform/sound/PrivateSoundServer.h"

namespace korvane {
extern PrivateSoundServer* soundServer;

namespace {

using namespace std::chrono_literals;
constexpr AudioFormat kFormat{48'000, 1};

ClockTime now() {
    return SteadyPlaybackClock().now();
}

/// Runs the event loop and `step` until `done` holds. \return false when that takes too long.
bool until(
    const std::function<bool()>& done, const std::function<void()>& step = [] {}, int timeoutMs = 15'000) {
    QElapsedTimer time;
    time.start();
    while (!done()) {
        if (time.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents();
        step();
        QThread::msleep(2);
    }
    return true;
}

/// Keeps an output fed with a code whose places can be found again.
struct Feeder {
    AudioOutput& output;
    fixtures::AudioCode code{1};
    std::int64_t written = 0;
    void feed() {
        const std::int64_t room = output.room();
        if (room <= 0)
            return;
        output.write(code.samples(written, kFormat.rateHz, room));
        written += room;
    }
};

struct PulseOutputTest : testing::Test {
    PulseOutputFactory factory;
    void SetUp() override {
        const auto opens = [this] { return factory.open(kFormat) != nullptr; };
        ASSERT_TRUE(until(opens)) << "the server's device never appears";
    }
};

TEST_F(PulseOutputTest, whatIsWrittenIsHeardAtThePaceOfTheClock) {
    const auto output = factory.open(kFormat);
    Feeder feeder{*output};
    HeardClock clock(kFormat.rateHz);
    const ClockTime began = now();
    ASSERT_TRUE(until([&] { return output->heard().frames > 0; }, [&] { feeder.feed(); }));
    EXPECT_LT(now() - began, 1s);
    // A second to settle, then three in which time must run evenly.
    ClockTime from{0};
    double fromFrames = 0.0;
    double worst = 0.0;
    double last = 0.0;
    const ClockTime end = now() + 4s;
    until([&] { return now() > end; },
          [&] {
              feeder.feed();
              const ClockTime at = now();
              const double frames = clock.framesAt(at, output->heard(), feeder.written);
              ASSERT_GE(frames, last);
              last = frames;
              if (at < end - 3s)
                  return;
              if (from == ClockTime(0)) {
                  from = at;
                  fromFrames = frames;
              }
              const double wanted = std::chrono::duration<double>(at - from).count() * kFormat.rateHz;
              worst = std::max(worst, std::abs(frames - fromFrames - wanted) / kFormat.rateHz);
          });
    RecordProperty("worst_ms", std::to_string(worst * 1000));
    std::printf("worst deviation from an even clock: %.2f ms\n", worst * 1000);
    EXPECT_LT(worst, 0.030);  // 6 ms on a machine that does nothing else
    EXPECT_FALSE(output->isDead());
    EXPECT_LE(feeder.written - output->heard().frames, kFormat.rateHz / 2);
}

TEST_F(PulseOutputTest, theDevicePlaysEverySampleOnceAndInOrder) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("heard.raw"));
    QProcess recorder;
    soundServer->record(recorder, file);
    ASSERT_TRUE(until([&] { return QFile(file).size() > 4800; })) << "nothing is recorded";
    {
        const auto output = factory.open(kFormat);
        Feeder feeder{*output};
        ASSERT_TRUE(
            until([&] { return output->heard().frames > 3 * kFormat.rateHz; }, [&] { feeder.feed(); }));
    }
    recorder.terminate();
    recorder.waitForFinished();
    QFile recorded(file);
    ASSERT_TRUE(recorded.open(QIODevice::ReadOnly));
    const QByteArray bytes = recorded.readAll();
    std::vector<float> heard(static_cast<std::size_t>(bytes.size()) / 2);
    for (std::size_t i = 0; i < heard.size(); ++i)
        heard[i] = static_cast<float>(reinterpret_cast<const std::int16_t*>(bytes.constData())[i]) / 32768.0F;
    const auto first = static_cast<std::int64_t>(
        std::find_if(heard.begin(), heard.end(), [](float s) { return std::abs(s) > 0.01F; }) -
        heard.begin());
    const fixtures::AudioCode code(1);
    double offset = 0.0;
    for (std::int64_t at = 4'800; at < 2 * kFormat.rateHz; at += 24'000) {
        const auto place =
            fixtures::locate(std::span(heard).subspan(static_cast<std::size_t>(first + at), 4'800), code,
                             kFormat.rateHz, at, 200);
        EXPECT_GT(place.correlation, 0.99) << at;
        if (at == 4'800)
            offset = place.offsetSamples;
        EXPECT_NEAR(place.offsetSamples, offset, 0.5) << "at sample " << at;
    }
}

TEST_F(PulseOutputTest, aFlushEndsTheSoundAndCountingStartsOver) {
    const auto output = factory.open(kFormat);
    Feeder feeder{*output};
    ASSERT_TRUE(until([&] { return output->heard().frames > 9'600; }, [&] { feeder.feed(); }));
    output->flush();
    EXPECT_EQ(output->heard().frames, 0);
    EXPECT_GT(output->room(), 0);
    EXPECT_FALSE(until([&] { return output->heard().frames > 0; }, [] {}, 200));
    ASSERT_TRUE(until([&] { return output->heard().frames > 9'600; }, [&] { feeder.feed(); }));
    EXPECT_FALSE(output->isDead());
}

TEST_F(PulseOutputTest, aDeviceOpensAndClosesInAMomentHoweverOften) {
    ClockTime worst{0};
    for (int i = 0; i < 30; ++i) {
        auto output = factory.open(kFormat);
        Feeder feeder{*output};
        ASSERT_TRUE(until([&] { return output->heard().frames > 0; }, [&] { feeder.feed(); }));
        const ClockTime began = now();
        output.reset();
        worst = std::max(worst, now() - began);
    }
    std::printf("worst time to close: %.1f ms\n", static_cast<double>(worst.count()) / 1e6);
    EXPECT_LT(worst, 100ms);
}

TEST_F(PulseOutputTest, aServerThatDiesLeavesADeadOutputAndAnotherOneComesWithTheServer) {
    const auto output = factory.open(kFormat);
    Feeder feeder{*output};
    ASSERT_TRUE(until([&] { return output->heard().frames > 9'600; }, [&] { feeder.feed(); }));
    soundServer->kill();
    ASSERT_TRUE(soundServer->start());
    EXPECT_TRUE(until([&] { return output->isDead(); }, [&] { feeder.feed(); }, 3'000));
    // Asked as seldom as a player asks.
    std::unique_ptr<AudioOutput> next;
    std::unique_ptr<Feeder> again;
    ClockTime askAt = now();
    EXPECT_TRUE(until([&] { return next && next->heard().frames > 9'600; },
                      [&] {
                          if (now() > askAt) {
                              askAt = now() + 2s;
                              next = factory.open(kFormat);
                              again = next ? std::make_unique<Feeder>(Feeder{*next}) : nullptr;
                          }
                          if (again)
                              again->feed();
                      },
                      30'000));
}

}  // namespace
}  // namespace korvane
