// What a reel must show and sound like at each moment, worked out anew from the words in whole numbers: none
// of the product's arithmetic is used. Times are in 1/600 s of composition time unless a name says otherwise;
// frame and sample numbers count in the written file, which begins at the pre-roll's end.
#pragma once

#include <cstdint>
#include <vector>

#include "model/SpeechSegment.h"
#include "tests/fixtures/ClipSpec.h"

namespace korvane::exactness {

struct ModelWord {
    std::int64_t source = 0;  ///< start in the source
    std::int64_t target = 0;  ///< start in the composition
    std::int64_t length = 0;
};

/// A subtitle line: shown in [start, end).
struct ModelLine {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// For words that lie inside the source, each longer than 1/600 s.
class ReelModel {
  public:
    explicit ReelModel(const std::vector<SpeechSegment>& segments);

    std::int64_t preroll() const { return preroll_; }
    const std::vector<ModelWord>& words() const { return words_; }
    const std::vector<ModelLine>& lines() const { return lines_; }
    double reelSeconds() const { return static_cast<double>(end_ - preroll_) / 600.0; }

    /// Frames of the reel at `rate` frames/s: as many as begin before its end.
    int frameCount(int rate) const;
    /// Index of the word whose stretch frame `frame` lies in.
    std::size_t wordAt(int frame, int rate) const;
    /// Number of the source frame that frame `frame` shows: the last one at or before the source time.
    int sourceFrame(int frame, int rate, const fixtures::VideoSpec& source) const;
    /// The source time that frame `frame` stands for.
    double sourceSeconds(int frame, int rate) const;
    std::size_t lineAt(int frame, int rate) const;
    /// Scale of the line at this frame, by the pop curve.
    double popScale(int frame, int rate) const;
    /// Seconds since the frame's line appeared.
    double lineAge(int frame, int rate) const;

    /// First sample of word `index` in the written file and in the source, at `rateHz`.
    std::int64_t firstSample(std::size_t index, int rateHz) const;
    std::int64_t firstSourceSample(std::size_t index, int rateHz) const;
    /// Seconds of the ramp to either side of the cut behind word `index`.
    double rampSeconds(std::size_t index) const;

  private:
    std::int64_t preroll_ = 0;
    std::int64_t end_ = 0;
    std::vector<ModelWord> words_;
    std::vector<ModelLine> lines_;
};

}  // namespace korvane::exactness
