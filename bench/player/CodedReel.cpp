#include "bench/player/CodedReel.h"

#include <stdexcept>
#include <string>

#include "bench/IdleQueue.h"
#include "editor/VideoEditor.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane::bench {
namespace {

constexpr int kClipSeconds = 14;
constexpr int kWords = 12;
constexpr int kWidth = 180;
constexpr int kHeight = 320;

std::filesystem::path codedClip(const std::filesystem::path& folder, int rate) {
    const auto clip = folder / ("coded-" + std::to_string(rate) + ".mov");
    if (std::filesystem::exists(clip))
        return clip;
    fixtures::ClipSpec spec;
    spec.video = {fixtures::VideoSpec::constantRate({rate, 1}, kClipSeconds)};
    spec.video[0].widthPx = kWidth;
    spec.video[0].heightPx = kHeight;
    spec.video[0].bFrames = 2;
    spec.audio = {fixtures::AudioSpec{}};
    spec.audio[0].codec = "pcm_s16le";
    spec.audio[0].durationSeconds = kClipSeconds;
    const auto unfinished = folder / ("unfinished-" + clip.filename().string());
    fixtures::writeClip(spec, unfinished);
    std::filesystem::rename(unfinished, clip);
    return clip;
}

std::vector<CodedWord> chosenWords(int rate) {
    std::vector<CodedWord> words;
    const int scale = rate / 30;
    for (int i = 0; i < kWords; ++i) {
        const int second = 1 + i * 7 % kWords;  // each once, in leaps
        words.push_back({(second * 30 + 4 + i % 5) * scale, (9 + i % 7) * scale});
    }
    return words;
}

}  // namespace

int CodedReel::lapPictures() const {
    int pictures = 0;
    for (const CodedWord& word : words)
        pictures += word.pictures;
    return pictures;
}

CodedReel makeCodedReel(const std::filesystem::path& folder, int picturesPerSecond) {
    std::vector<SpeechSegment> segments;
    const auto words = chosenWords(picturesPerSecond);
    const double rate = picturesPerSecond;
    for (const CodedWord& word : words)
        segments.emplace_back("word", word.firstPicture / rate, (word.firstPicture + word.pictures) / rate);
    IdleQueue queue;
    CodedReel reel{picturesPerSecond, words,
                   VideoEditor(queue, silentLog())
                       .buildBundle(codedClip(folder, picturesPerSecond), segments, SubtitleSettings{}, {})};
    const MediaTime length = reel.bundle.previewPlayerItem()->composition()->duration();
    if (length - reel.bundle.prerollDuration() != MediaTime(reel.lapPictures(), picturesPerSecond))
        throw std::runtime_error("the reel is " + length.toString() + " long, which its words are not");
    return reel;
}

}  // namespace korvane::bench
