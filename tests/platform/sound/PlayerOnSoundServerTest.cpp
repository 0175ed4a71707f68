// The player as a person has it: real time, a real sound server, and what the server's device really played.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cmath>

#include "platform/av/CompositionReader.h"
#include "platform/av/Player.h"
#include "platform/sound/QtAudioOutputFactory.h"
#include "platform/tasks/QtMainQueue.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/platform/sound/PrivateSoundServer.h"

namespace korvane {
extern PrivateSoundServer* soundServer;

namespace {

using namespace std::chrono_literals;
constexpr int kRate = 48'000;
const MediaTime kLoopPoint(150, 600);

std::shared_ptr<PlayerItem> reel() {
    const auto clip = fixtures::cachedClip("sound-server.mov", [](const auto& to) {
        fixtures::ClipSpec spec;
        spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 10.0)};
        spec.audio = {fixtures::AudioSpec{}};
        spec.audio[0].codec = "pcm_s16le";
        spec.audio[0].durationSeconds = 10.0;
        fixtures::writeClip(spec, to);
    });
    Asset asset(clip);
    auto composition = std::make_shared<Composition>();
    const auto picture = asset.loadTracks(MediaType::video).at(0);
    const auto sound = asset.loadTracks(MediaType::audio).at(0);
    auto* video = composition->addMutableTrack(MediaType::video);
    auto* audio = composition->addMutableTrack(MediaType::audio);
    MediaTime at;
    for (const int second : {7, 2, 5}) {
        const TimeRange source{{second * 600, 600}, {270, 600}};
        video->insertTimeRange(source, picture, at);
        audio->insertTimeRange(source, sound, at);
        at = at + source.duration;
    }
    VideoComposition view;
    view.renderSize = picture.naturalSize;
    view.frameDuration = MediaTime(1, 30);
    view.instructions.push_back({{kZeroTime, at}, {{video->trackID(), {}}}});
    return std::make_shared<PlayerItem>(composition, view, std::nullopt);
}

bool until(const std::function<bool()>& done, int timeoutMs = 15'000) {
    QElapsedTimer time;
    time.start();
    while (!done()) {
        if (time.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    return true;
}

std::vector<float> recorded(const QString& file) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = in.readAll();
    std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            static_cast<float>(reinterpret_cast<const std::int16_t*>(bytes.constData())[i]) / 32768.0F;
    return samples;
}

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
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    QtAudioOutputFactory outputs;
    ASSERT_TRUE(until([&] { return outputs.open({kRate, 1}) != nullptr; }));
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("heard.raw"));
    QProcess recorder;
    soundServer->record(recorder, file);
    ASSERT_TRUE(until([&] { return QFile(file).size() > 4800; })) << "nothing is recorded";

    const auto item = reel();
    Player player(queue, clock, outputs, item);
    player.setActionAtItemEnd(ActionAtItemEnd::none);
    player.setLoopHint(kLoopPoint);
    int ends = 0;
    auto atEnd = player.observeEnd([&] {
        ++ends;
        player.seek(kLoopPoint, [&](bool) { player.play(); });
    });
    bool ready = false;
    player.seek(kLoopPoint, kZeroTime, kZeroTime, [&](bool) {
        player.preroll(1.0, [&](bool finished) {
            ready = finished;
            player.play();
        });
    });
    ASSERT_TRUE(until([&] { return ends >= 5; }));
    EXPECT_TRUE(ready);
    player.pause();
    recorder.terminate();
    recorder.waitForFinished();
    EXPECT_EQ(player.statistics().soundUnderruns, 0);

    const auto tape = recorded(file);
    CompositionAudioReader reader(item->composition(), std::nullopt, {kRate, 1}, {});
    const std::int64_t first = kLoopPoint.toUnits(kRate);
    const std::int64_t length = item->composition()->duration().toUnits(kRate) - first;
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

TEST(PlayerOnSoundServer, timeGoesOnWhenTheServerDiesAndWhenItIsBack) {
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    QtAudioOutputFactory outputs;
    ASSERT_TRUE(until([&] { return outputs.open({kRate, 1}) != nullptr; }));
    Player player(queue, clock, outputs, reel());
    player.setActionAtItemEnd(ActionAtItemEnd::none);
    player.setLoopHint(kLoopPoint);
    int ends = 0;
    auto atEnd = player.observeEnd([&] {
        ++ends;
        player.seek(kLoopPoint, [&](bool) { player.play(); });
    });
    player.play();
    ASSERT_TRUE(until([&] { return ends >= 1; }));
    soundServer->kill();
    const int before = ends;
    ASSERT_TRUE(until([&] { return ends >= before + 2; })) << "time stands still without the server";
    ASSERT_TRUE(soundServer->start());
    const int after = ends;
    EXPECT_TRUE(until([&] { return ends >= after + 3; }));
}

}  // namespace
}  // namespace korvane
