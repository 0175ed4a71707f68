// What the worker says of a request, read from the lines of its protocol. What makes no sense makes the line
// void.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/speech/whisper/WhisperHeard.h"
#include "platform/speech/whisper/WhisperProtocol.h"

namespace korvane::whisper {

/// Hundredths of a second that can't be far off; the rest is for whoever uses them to sort out.
inline constexpr std::int64_t farAway = 100 * 3600;

/// The rest of a "token" line.
inline WhisperToken readToken(Line& line, std::string text) {
    WhisperToken token;
    token.aligned = line.number(-farAway, farAway);
    token.probability = line.number(0.0, 1.0);
    token.bytes = std::move(text);
    line.number<std::size_t>(token.bytes.size(), token.bytes.size());
    return token;
}

/// The rest of a "segment" line.
inline WhisperSegment readSegment(Line& line) {
    WhisperSegment segment;
    segment.start = line.number(-farAway, farAway);
    segment.end = line.number(-farAway, farAway);
    segment.silence = line.number(0.0, 1.0);
    return segment;
}

/// The text of "chances", a byte for each chance.
inline std::vector<double> readChances(const std::string& text) {
    std::vector<double> chances;
    for (const char chance : text)
        chances.push_back(static_cast<unsigned char>(chance) / 255.0);
    return chances;
}

}  // namespace korvane::whisper
