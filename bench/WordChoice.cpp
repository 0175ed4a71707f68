#include "bench/WordChoice.h"

#include <iterator>
#include <random>

namespace korvane::bench {

std::vector<SpeechSegment> chooseWords(const ReelShape& shape) {
    static constexpr const char* kTexts[] = {"so",    "what",      "we",    "found", "was",  "really",
                                             "quite", "different", "from",  "the",   "plan", "everybody",
                                             "had",   "agreed",    "upon,", "and",   "that", "surprised"};
    std::mt19937 random(11);
    const auto share = [&random] { return static_cast<double>(random()) / 4294967296.0; };
    // Each phrase has a stretch of the source to itself and lies somewhere in it.
    const int phrases = shape.words / shape.together;
    const double stretch = shape.sourceSeconds / phrases;
    std::vector<SpeechSegment> words;
    double factor = 1.0;
    for (int p = 0; p < phrases; ++p) {
        // Uneven lengths in pairs that come to the same sum.
        factor = p % 2 == 1 ? 2.0 - factor : (p + 1 < phrases ? 0.6 + 0.8 * share() : 1.0);
        const double length = factor * shape.reelSeconds / shape.words;
        double from = p * stretch + 0.98 * (stretch - length * shape.together) * share();
        for (int i = 0; i < shape.together; ++i, from += length)
            words.emplace_back(kTexts[words.size() % std::size(kTexts)], from, from + length);
    }
    return words;
}

}  // namespace korvane::bench
