// Refines the times of words that a script made up: the stage behind every recogniser, without a recogniser.
//
//   korvane-bench-word-times FILE.wav < WORDS > WORDS     a line is BEGIN END TEXT, in samples at 16 kHz
#include <cstdint>
#include <exception>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "platform/ffmpeg/AudioDecoder.h"
#include "platform/speech/SpeechStretches.h"
#include "platform/speech/WordTimes.h"

namespace {

using namespace korvane;

constexpr int rateHz = 16000;

std::vector<SpeechStretch> stretchesOf(const char* file) {
    const auto recording = AudioDecoder::open(file, -1, AudioFormat{rateHz, 1}, {});
    SpeechStretches finder(rateHz);
    std::vector<SpeechStretch> found;
    std::vector<float> block(8192);
    for (std::int64_t position = 0, count = std::ssize(block); count == std::ssize(block);
         position += count) {
        count = recording->read(position, block);
        finder.push(std::span(block).first(static_cast<std::size_t>(count)));
        if (count < std::ssize(block))
            finder.finish();
        while (auto stretch = finder.next())
            found.push_back(std::move(*stretch));
    }
    finder.finish();
    while (auto stretch = finder.next())
        found.push_back(std::move(*stretch));
    return found;
}

void refineAll(const char* file) {
    std::vector<TimedWord> words;
    for (TimedWord word; std::cin >> word.begin >> word.end && std::getline(std::cin >> std::ws, word.text);)
        words.push_back(word);
    std::int64_t lastEnd = 0;
    auto word = words.begin();
    for (const auto& stretch : stretchesOf(file)) {
        std::vector<TimedWord> inside;
        for (; word != words.end() && word->begin + rateHz / 20 < stretch.end(); ++word)
            inside.push_back(*word);
        for (const auto& refined : refineWordTimes(std::move(inside), stretch, rateHz, lastEnd)) {
            lastEnd = refined.end;
            std::cout << refined.begin << ' ' << refined.end << ' ' << refined.text << '\n';
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: korvane-bench-word-times FILE < WORDS\n";
        return 2;
    }
    try {
        refineAll(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
