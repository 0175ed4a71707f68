#include "platform/speech/whisper/SpeechWindow.h"

#include <algorithm>
#include <utility>

#include "platform/speech/SoundLevel.h"

namespace korvane {
namespace {

// As SpeechStretches tells speech from its background.
constexpr double aboveFloorDb = 6.0;
constexpr double inaudibleDb = -66.0;

std::int64_t overlap(const SpeechWindow::Piece& piece, std::int64_t begin, std::int64_t end) {
    return std::min(end, piece.voiceEnd) - std::max(begin, piece.voiceBegin);
}

void findVoice(SpeechWindow::Piece& piece) {
    const auto& stretch = piece.stretch;
    const auto levels = LevelCurve::of(stretch.samples, SpeechWindow::rateHz);
    const double audible = std::max(stretch.floorDb + aboveFloorDb, inaudibleDb);
    const auto isVoice = [audible](double level) { return level > audible; };
    const auto first = std::find_if(levels.db.begin(), levels.db.end(), isVoice);
    const auto last = std::find_if(levels.db.rbegin(), levels.db.rend(), isVoice);
    const auto length = static_cast<std::int64_t>(stretch.samples.size());
    piece.voiceBegin = piece.offset;
    piece.voiceEnd = piece.offset + length;
    if (first == levels.db.end())
        return;
    if (!stretch.beginsInSpeech)
        piece.voiceBegin += std::distance(levels.db.begin(), first) * levels.step;
    if (!stretch.endsInSpeech)
        piece.voiceEnd =
            piece.offset +
            std::min((std::distance(last, levels.db.rend()) - 1) * levels.step + levels.window, length);
}

bool continues(const SpeechWindow::Piece& piece, const SpeechStretch& stretch) {
    return piece.stretch.endsInSpeech && stretch.beginsInSpeech && piece.stretch.end() == stretch.begin;
}

}  // namespace

bool SpeechWindow::hasRoomFor(const SpeechStretch& stretch) const {
    return isEmpty() || std::ssize(samples_) + std::ssize(stretch.samples) <= longest;
}

void SpeechWindow::add(VoicedPart part) {
    if (!isEmpty() && continues(pieces_.back(), part.stretch)) {
        goOn(part);
        return;
    }
    Piece piece;
    piece.offset = std::ssize(samples_);
    samples_.insert(samples_.end(), part.stretch.samples.begin(), part.stretch.samples.end());
    piece.stretch = std::move(part.stretch);
    findVoice(piece);
    const auto inWindow = [&](std::int64_t sample) { return piece.offset + sample - piece.stretch.begin; };
    if (part.voiceBegin)
        piece.voiceBegin = inWindow(*part.voiceBegin);
    if (part.voiceEnd)
        piece.voiceEnd = inWindow(*part.voiceEnd);
    pieces_.push_back(std::move(piece));
}

void SpeechWindow::goOn(const VoicedPart& part) {
    auto& piece = pieces_.back();
    const auto voiceBegin = piece.voiceBegin;
    const auto& added = part.stretch.samples;
    samples_.insert(samples_.end(), added.begin(), added.end());
    piece.stretch.samples.insert(piece.stretch.samples.end(), added.begin(), added.end());
    piece.stretch.floorDb = std::min(piece.stretch.floorDb, part.stretch.floorDb);
    piece.stretch.endsInSpeech = part.stretch.endsInSpeech;
    findVoice(piece);
    piece.voiceBegin = voiceBegin;
    if (part.voiceEnd)
        piece.voiceEnd = piece.offset + *part.voiceEnd - piece.stretch.begin;
}

std::size_t SpeechWindow::pieceOf(std::int64_t begin, std::int64_t end) const {
    // A negative overlap is a distance, so the largest one is right in both cases.
    const auto best = std::max_element(pieces_.begin(), pieces_.end(), [&](const auto& a, const auto& b) {
        return overlap(a, begin, end) < overlap(b, begin, end);
    });
    return static_cast<std::size_t>(std::distance(pieces_.begin(), best));
}

std::int64_t SpeechWindow::voiceIn(std::int64_t begin, std::int64_t end) const {
    std::int64_t sum = 0;
    for (const auto& piece : pieces_)
        sum += std::max<std::int64_t>(overlap(piece, begin, end), 0);
    return sum;
}

}  // namespace korvane
