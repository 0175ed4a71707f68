// Which words a measured reel is made of. Worker and driver come to the same ones by themselves.
#pragma once

#include <vector>

#include "model/SpeechSegment.h"

namespace korvane::bench {

struct ReelShape {
    double sourceSeconds = 60.0;
    double reelSeconds = 20.0;  ///< of all words together; at most two thirds of the source
    int words = 64;             ///< a multiple of `together`
    int together = 1;           ///< words that follow each other without a gap, as in a phrase that was kept
};

/// Words of uneven lengths in phrases at uneven distances over the whole source, in order.
std::vector<SpeechSegment> chooseWords(const ReelShape& shape);

}  // namespace korvane::bench
