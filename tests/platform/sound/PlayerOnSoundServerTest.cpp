// The player as a person has it: real time, a real sound server, and what the server's device really played.
#include <gtest/gtest.h>

#include <QFile>
#include <cmath>

#include "platform/av/CompositionReader.h"
#include "tests/platform/sound/Listening.h"

namespace korvane {
namespace {

constexpr int kRate = 48'000;

/// Where in `tape`, at or behind `from`, `probe` sounds.
std::int64_t placeOf(const std::vector<float>& tape, const std::vector<float>& probe, std::size_t from) {
    for (std::size_t i = from; i + probe.size() < tape.size(); ++i) {
        std::size_t n = 0;
        while (n < probe.size() && std::abs(tape[i + n] - probe[n]) < 0.001F)
            ++n;
        if (n == probe.size())
            return static_cast<std::int64_t>(i);
    }
    return -1;
}

TEST(PlayerOnSoundServer, lapsFollowOneAnotherToTheSampleInWhatTheDevicePlays) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("heard.raw"));
    QProcess recorder;
    soundServer->record(recorder, file);
    ASSERT_TRUE(until([&] { return QFile(file).size() > 4800; })) << "nothing is recorded";
    LoopedReel reel;
    ASSERT_GT(reel.lap(5), 0.0);
    reel.player->pause();
    recorder.terminate();
    recorder.waitForFinished();
    EXPECT_EQ(reel.player->statistics().soundUnderruns, 0);

    const auto tape = recordedSamples(file);
    const auto composition = reel.player->currentItem()->composition();
    CompositionAudioReader reader(composition, std::nullopt, {kRate, 1}, {});
    const std::int64_t first = kReelLoopPoint.toUnits(kRate);
    const std::int64_t length = composition->duration().toUnits(kRate) - first;
    std::vector<float> probe(400);
    reader.read(first + 1000, probe);
    const std::int64_t start = placeOf(tape, probe, 0) - 1000;
    ASSERT_GE(start, 0) << "the reel is not heard";
    std::vector<float> lap(static_cast<std::size_t>(length));
    reader.read(first, lap);
    for (int i = 0; i < 4; ++i)
        for (std::int64_t n = 0; n < length; ++n)
            ASSERT_NEAR(tape.at(static_cast<std::size_t>(start + i * length + n)),
                        lap[static_cast<std::size_t>(n)], 0.001)
                << "lap " << i << " sample " << n;
}

TEST(PlayerOnSoundServer, anItemShorterThanEveryBufferIsHeardToItsLastSample) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("heard.raw"));
    QProcess recorder;
    soundServer->record(recorder, file);
    ASSERT_TRUE(until([&] { return QFile(file).size() > 4800; })) << "nothing is recorded";
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    PulseOutputFactory outputs;
    const auto item = soundReel({2}, MediaTime(12, 600));
    Player player(queue, clock, outputs, item);
    bool ended = false;
    auto atEnd = player.observeEnd([&] { ended = true; });
    player.play();
    ASSERT_TRUE(until([&] { return ended; }));
    CompositionAudioReader reader(item->composition(), std::nullopt, {kRate, 1}, {});
    std::vector<float> all(static_cast<std::size_t>(item->composition()->duration().toUnits(kRate)));
    reader.read(0, all);
    EXPECT_TRUE(until([&] { return placeOf(recordedSamples(file), all, 0) >= 0; }, 3'000));
    recorder.terminate();
    recorder.waitForFinished();
}

}  // namespace
}  // namespace korvane
