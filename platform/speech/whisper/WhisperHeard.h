// What the Whisper library heard in one request, as it came.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvane {

/// Times in hundredths of a second from the first sample of the request, not yet checked against anything.
struct WhisperToken {
    std::string bytes;          ///< may begin or end inside a UTF-8 character
    std::int64_t aligned = -1;  ///< the token's end by alignment with the sound; negative: none
    double probability = 0.0;
};

struct WhisperSegment {
    std::int64_t start = 0;
    std::int64_t end = 0;
    double silence = 0.0;  ///< the chance that nobody speaks
    std::vector<WhisperToken> tokens;
};

}  // namespace korvane
