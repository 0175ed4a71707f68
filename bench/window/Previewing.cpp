// From pressing Preview to the first frame, whatever the length of the source and the number of words.
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/window/Jobs.h"
#include "bench/window/PreviewPress.h"
#include "bench/window/Transcript.h"

namespace korvane::bench {
namespace {

constexpr int kSameWords = 10;

/// The first ten are the same in every source, half a second behind its middle, so that the same pictures
/// have to be decoded; the others share what is left.
std::vector<SpeechSegment> wordsBehindTheMiddle(double sourceSeconds, int count) {
    std::vector<SpeechSegment> words;
    const double first = sourceSeconds / 2.0 + 0.5;
    for (int i = 0; i < std::min(count, kSameWords); ++i)
        words.emplace_back("word" + std::to_string(i), first + i, first + i + 0.3);
    const double from = first + kSameWords;
    const double each = (sourceSeconds - 1.0 - from) / std::max(1, count - kSameWords);
    for (int i = kSameWords; i < count; ++i) {
        const double start = from + (i - kSameWords) * each;
        words.emplace_back("word" + std::to_string(i), start, start + std::min(0.3, 0.8 * each));
    }
    return words;
}

}  // namespace

void measurePreviewing(const std::string& video, double sourceSeconds, int words, int presses) {
    Desk desk(saying(wordsBehindTheMiddle(sourceSeconds, words)));
    openVideo(desk, video);
    transcribe(desk);
    if (desk.view().selectedSegments().size() != static_cast<std::size_t>(words))
        throw std::runtime_error("words are missing");
    for (int i = 0; i <= presses; ++i) {
        Press press;
        // The first one of the program also looks for sound devices.
        const char* name = i == 0 ? "first preview" : i == 1 ? "next preview" : "";
        const WatchedStep step = desk.watch(name, [&] { press = pressPreview(desk); });
        if (i <= 1)
            print(step);
        std::printf("%s\t%.3f\t%.3f\t%.3f\n", i == 0 ? "first" : "press", press.firstFrameMs, press.playingMs,
                    press.processorMs);
        const WatchedStep closing = desk.watch("close", [&] { pressClose(desk); });
        if (i == 1)
            print(closing);
    }
}

}  // namespace korvane::bench
