#include "tests/platform/sound/Listening.h"

#include <QCoreApplication>
#include <QFile>
#include <QThread>
#include <algorithm>
#include <cmath>

#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {

std::shared_ptr<PlayerItem> soundReel(const std::vector<int>& seconds, MediaTime word) {
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
    for (const int second : seconds) {
        const TimeRange source{{second * 600, 600}, word};
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

bool until(const std::function<bool()>& done, int timeoutMs) {
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

void pass(int ms) {
    until([] { return false; }, ms);
}

std::vector<float> recordedSamples(const QString& file) {
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

bool isHeard(const QString& device, int timeoutMs) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("heard.raw"));
    QProcess recorder;
    soundServer->record(recorder, file, device);
    const auto isLoud = [](float sample) { return std::abs(sample) > 0.05F; };
    const bool heard = until([&] { return std::ranges::any_of(recordedSamples(file), isLoud); }, timeoutMs);
    recorder.terminate();
    recorder.waitForFinished();
    return heard;
}

LoopedReel::LoopedReel() {
    player->setActionAtItemEnd(ActionAtItemEnd::none);
    player->setLoopHint(kReelLoopPoint);
    atEnd = player->observeEnd([this] {
        ++ends;
        player->seek(kReelLoopPoint, [this](bool) { player->play(); });
    });
    player->seek(kReelLoopPoint, kZeroTime, kZeroTime,
                 [this](bool) { player->preroll(1.0, [this](bool) { player->play(); }); });
}

double LoopedReel::lap(int laps, int timeoutMs) {
    QElapsedTimer time;
    time.start();
    const int wanted = ends + laps;
    return until([&] { return ends >= wanted; }, timeoutMs) ? static_cast<double>(time.elapsed()) / 1e3
                                                            : -1.0;
}

}  // namespace korvane
