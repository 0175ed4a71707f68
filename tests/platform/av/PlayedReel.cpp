#include "tests/platform/av/PlayedReel.h"

#include <algorithm>
#include <cmath>

#include "platform/av/CompositionReader.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {

std::filesystem::path playedClip(bool withSound) {
    return fixtures::cachedClip(withSound ? "played.mov" : "played-silent.mov", [=](const auto& to) {
        fixtures::ClipSpec spec;
        spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 20.0)};
        spec.video[0].bFrames = 2;
        if (withSound) {
            spec.audio = {fixtures::AudioSpec{}};
            spec.audio[0].codec = "pcm_s16le";
            spec.audio[0].durationSeconds = 20.0;
        }
        fixtures::writeClip(spec, to);
    });
}

int Reel::pictureAt(MediaTime t) const {
    for (const TrackSegment& s : composition->tracks(MediaType::video).at(0)->segments())
        if (s.target.contains(t))
            return static_cast<int>((s.source.start + (t - s.target.start)).toUnits(30, Rounding::down));
    return -1;
}

std::vector<float> Reel::sound(std::int64_t from, std::int64_t to) const {
    CompositionAudioReader reader(composition, std::nullopt, {kReelRateHz, 1}, {});
    std::vector<float> samples(static_cast<std::size_t>(to - from));
    reader.read(from, samples);
    return samples;
}

Reel makeReel(const std::filesystem::path& clip, int words) {
    Asset asset(clip);
    Reel r;
    const AssetTrack picture = asset.loadTracks(MediaType::video).at(0);
    const auto sounds = asset.loadTracks(MediaType::audio);
    CompositionTrack* video = r.composition->addMutableTrack(MediaType::video);
    CompositionTrack* audio = sounds.empty() ? nullptr : r.composition->addMutableTrack(MediaType::audio);
    MediaTime at;
    const auto insert = [&](TimeRange source) {
        video->insertTimeRange(source, picture, at);
        if (audio)
            audio->insertTimeRange(source, sounds.at(0), at);
        at = at + source.duration;
    };
    constexpr int kSeconds[] = {3, 11, 1, 17, 5, 6, 2, 15, 9, 13};
    insert({{kSeconds[0] * 600 + 7 - 150, 600}, {150, 600}});
    for (int i = 0; i < words; ++i) {
        const int second = kSeconds[i % 10];
        insert({{second * 600 + 7, 600}, {150 + 15 * (i % 10), 600}});
    }
    r.video.renderSize = picture.naturalSize;
    r.video.frameDuration = MediaTime(1, 30);
    r.video.instructions.push_back({{kZeroTime, at}, {{video->trackID(), {}}}});
    return r;
}

void PlayedReel::open(std::shared_ptr<PlayerItem> item) {
    player = std::make_unique<Player>(queue, clock, outputs, std::move(item));
    player->setActionAtItemEnd(ActionAtItemEnd::none);
    player->setFrameSize(180, 320);
    player->setFrameConsumer(screen);
}

void PlayedReel::loop() {
    atEnd = player->observeEnd([this] {
        ++ends;
        player->seek(loopPoint, [this](bool) { player->play(); });
    });
}

void PlayedReel::start() {
    player->seek(loopPoint, kZeroTime, kZeroTime, [](bool) {});
    settle();
    player->preroll(1.0, [this](bool) { player->play(); });
    settle();
}

void PlayedReel::settle() {
    do
        clock.settle(threads);
    while (queue.runAll() > 0);
}

void PlayedReel::run(ClockTime time, ClockTime step) {
    for (ClockTime done{0}; done < time; done += step) {
        clock.advance(step);
        settle();
    }
}

Player::Completion PlayedReel::note(const std::string& name) {
    return [this, name](bool finished) { events.push_back(name + (finished ? " done" : " superseded")); };
}

std::int64_t PlayedReel::findSound(std::int64_t sample, std::int64_t from) const {
    constexpr std::int64_t kProbe = 500;
    const auto probe = reel.sound(sample, sample + kProbe);
    const auto& tape = outputs.tape->samples;
    const auto begin = tape.begin() + std::min<std::int64_t>(from, static_cast<std::int64_t>(tape.size()));
    const auto found = std::search(begin, tape.end(), probe.begin(), probe.end());
    return found == tape.end() ? -1 : found - tape.begin();
}

ClockTime PlayedReel::heardAt(std::int64_t n) {
    return ClockTime(n * 1'000'000'000 / kReelRateHz);
}

}  // namespace korvane
