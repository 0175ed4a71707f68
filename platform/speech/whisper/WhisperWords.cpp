#include "platform/speech/whisper/WhisperWords.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "platform/speech/TokenWords.h"

namespace korvane {
namespace {

constexpr std::int64_t samplesOfHundredth = SpeechWindow::rateHz / 100;

/// When a token is said, in samples of the window.
struct Moment {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// Above this the model hears no speech, whatever it says. Between the two it depends on how sure it is of
/// what it says.
constexpr double surelySilent = 0.8;
constexpr double perhapsSilent = 0.6;
constexpr double sureOfItself = 0.5;

constexpr std::int64_t longPause = SpeechWindow::rateHz * 3 / 10;

/// The alignment's grid.
constexpr std::int64_t frame = SpeechWindow::rateHz / 50;

/// Segments whose tokens were all aligned to one moment are believed their own times up to this.
constexpr std::int64_t longestToken = SpeechWindow::rateHz;

/// An edge of a phrase that is further from the voice's than this isn't the voice's edge: a cough before the
/// first word, a chair after the last.
constexpr std::int64_t farthestAnchor = SpeechWindow::rateHz * 6 / 10;

std::int64_t toSamples(std::int64_t hundredths, const SpeechWindow& window) {
    return std::clamp<std::int64_t>(hundredths * samplesOfHundredth, 0, std::ssize(window.samples()));
}

/// Geometric mean of the tokens' probabilities.
double confidence(const WhisperSegment& segment) {
    double sum = 0.0;
    for (const auto& token : segment.tokens)
        sum += std::log(std::max(token.probability, 1e-6));
    return segment.tokens.empty() ? 0.0 : std::exp(sum / static_cast<double>(segment.tokens.size()));
}

bool isMadeUp(const WhisperSegment& segment) {
    return segment.silence > surelySilent ||
           (segment.silence > perhapsSilent && confidence(segment) < sureOfItself);
}

/// The segment's tokens from the end of the token before it on.
std::vector<HeardToken> timedTokens(const WhisperSegment& segment, const SpeechWindow& window,
                                    const Moment& before, bool isAligned = true) {
    auto last = before;
    // Without an alignment the segment's own times have to do, shared out evenly.
    const auto ownStart = toSamples(segment.start, window);
    const auto start = std::max(ownStart, last.end);
    const auto end = std::max(toSamples(segment.end, window), start);
    const auto count = std::ssize(segment.tokens);
    // After a pause the segment's own start is nearer than the end of what was said before it.
    const bool afterPause = start - last.end >= longPause;
    if (afterPause)
        last = {start, start};
    std::vector<HeardToken> tokens;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const auto& heard = segment.tokens[static_cast<std::size_t>(i)];
        const auto said = isAligned && heard.aligned >= 0 ? toSamples(heard.aligned, window)
                                                          : start + (end - start) * (i + 1) / count;
        auto begin = last.end;
        // A full stop is often aligned late, into the words behind it. What is spoken stays in order anyway.
        if (said < last.end)
            begin = i == 0 && ownStart < said ? std::max(ownStart, last.begin) : last.begin;
        last = {begin, std::max(said, begin)};
        tokens.push_back({heard.bytes, last.begin, last.end, heard.probability, afterPause && i == 0});
    }
    const bool isMoment = count > 0 && last.end - tokens.front().begin < frame;
    if (isAligned && isMoment && end - start <= count * longestToken)
        return timedTokens(segment, window, before, false);
    return tokens;
}

/// Whether the segment lies where nobody speaks. One without a length is looked for where it says itself that
/// it lies, too.
bool isInSilence(const WhisperSegment& segment, const std::vector<HeardToken>& tokens,
                 const SpeechWindow& window) {
    auto begin = tokens.front().begin;
    auto end = tokens.back().end;
    if (end - begin < frame) {
        // Times that run back say nothing, of silence neither.
        if (segment.end < segment.start)
            return false;
        begin = std::min(begin, toSamples(segment.start, window)) - frame;
        end = std::max(end, toSamples(segment.end, window)) + frame;
    }
    return window.voiceIn(begin, end) == 0;
}

/// Tells the pauses that lie between the pieces of the window.
void tellPauses(std::vector<HeardToken>& tokens, const SpeechWindow& window) {
    std::size_t before = 0;
    for (auto& token : tokens) {
        const auto piece = std::max(window.pieceOf(token.begin, token.end), before);
        token.afterPause = token.afterPause || piece > before;
        before = piece;
    }
}

/// All that was said, in samples of the window.
std::vector<HeardToken> tokensOf(const std::vector<WhisperSegment>& segments, const SpeechWindow& window) {
    std::vector<HeardToken> all;
    Moment last;
    for (const auto& segment : segments) {
        auto tokens = timedTokens(segment, window, last);
        if (tokens.empty())
            continue;
        last = {tokens.back().begin, tokens.back().end};
        if (isMadeUp(segment) || isInSilence(segment, tokens, window))
            continue;
        std::move(tokens.begin(), tokens.end(), std::back_inserter(all));
    }
    tellPauses(all, window);
    return all;
}

/// Into the piece, and its outer words to where the voice begins and ends; where the piece was cut in
/// mid-speech that is not known.
void anchor(std::vector<TimedWord>& words, const SpeechWindow::Piece& piece) {
    for (auto& word : words) {
        word.begin = std::clamp(word.begin, piece.voiceBegin, piece.voiceEnd);
        word.end = std::clamp(word.end, word.begin, piece.voiceEnd);
    }
    if (!piece.beginsAtCut() && words.front().begin - piece.voiceBegin <= farthestAnchor)
        words.front().begin = piece.voiceBegin;
    if (!piece.endsAtCut() && piece.voiceEnd - words.back().end <= farthestAnchor)
        words.back().end = piece.voiceEnd;
    for (auto& word : words) {
        word.begin = piece.inRecording(word.begin);
        word.end = piece.inRecording(word.end);
    }
}

}  // namespace

std::vector<PieceWords> wordsOfWindow(const std::vector<WhisperSegment>& segments, const SpeechWindow& window,
                                      const Locale& locale) {
    const auto tokens = tokensOf(segments, window);
    std::vector<PieceWords> all;
    for (auto& word : wordsOfTokens(tokens, locale)) {
        auto piece = window.pieceOf(word.begin, word.end);
        if (!all.empty())
            piece = std::max(piece, all.back().piece);
        if (all.empty() || all.back().piece != piece)
            all.push_back({piece, {}});
        all.back().words.push_back(std::move(word));
    }
    for (auto& [piece, words] : all)
        anchor(words, window.pieces()[piece]);
    return all;
}

}  // namespace korvane
