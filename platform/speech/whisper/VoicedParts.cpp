#include "platform/speech/whisper/VoicedParts.h"

#include <algorithm>

#include "platform/speech/whisper/WhisperProtocol.h"

namespace korvane {
namespace {

// Frames of 32 ms. A voice begins where the model is more sure than not, and holds until it is clearly less.
constexpr double sureOfVoice = 0.5;
constexpr double sureOfNone = 0.35;
constexpr std::int64_t fewestVoiced = 2;                // of a voice: "I" has three
constexpr std::int64_t longestOther = whisper::rateHz;  // samples between two voices that stay together
constexpr std::int64_t pad = whisper::rateHz / 4;       // kept on both sides, as around any stretch
constexpr std::int64_t lead = whisper::voiceFrame;      // the model hears a voice late and leaves it early

/// Samples [begin, end) of the stretch in which a voice is heard.
struct Voice {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

std::vector<Voice> voicesIn(const std::vector<double>& chances) {
    std::vector<Voice> voices;
    std::int64_t sure = 0;
    bool isVoice = false;
    for (std::int64_t frame = 0; frame < std::ssize(chances); ++frame) {
        const double chance = chances[static_cast<std::size_t>(frame)];
        const auto begin = frame * whisper::voiceFrame;
        if (!isVoice && chance >= sureOfVoice) {
            voices.push_back({begin, begin});
            sure = 0;
        }
        isVoice = chance >= (isVoice ? sureOfNone : sureOfVoice);
        if (isVoice) {
            voices.back().end = begin + whisper::voiceFrame;
            sure += chance >= sureOfVoice ? 1 : 0;
        } else if (!voices.empty() && voices.back().end == begin && sure < fewestVoiced) {
            voices.pop_back();  // a click
        }
    }
    if (isVoice && sure < fewestVoiced)
        voices.pop_back();
    return voices;
}

/// Voices with little between them as one.
std::vector<Voice> together(const std::vector<Voice>& voices) {
    std::vector<Voice> all;
    for (const auto& voice : voices) {
        if (!all.empty() && voice.begin - all.back().end < longestOther)
            all.back().end = voice.end;
        else
            all.push_back(voice);
    }
    return all;
}

/// \param room  up to the voices before and behind, or the stretch's edges.
VoicedPart partAround(const SpeechStretch& stretch, const Voice& voice, const Voice& room) {
    const bool isCutBefore = voice.begin - room.begin >= longestOther;
    const bool isCutBehind = room.end - voice.end >= longestOther;
    const auto begin = isCutBefore ? voice.begin - pad : room.begin;
    const auto end = isCutBehind ? voice.end + pad : room.end;
    VoicedPart part;
    part.stretch.begin = stretch.begin + begin;
    part.stretch.samples.assign(stretch.samples.begin() + begin, stretch.samples.begin() + end);
    part.stretch.floorDb = stretch.floorDb;
    part.stretch.beginsInSpeech = isCutBefore || stretch.beginsInSpeech;
    part.stretch.endsInSpeech = isCutBehind || stretch.endsInSpeech;
    if (isCutBefore)
        part.voiceBegin = stretch.begin + voice.begin - lead;
    if (isCutBehind)
        part.voiceEnd = stretch.begin + voice.end + lead;
    return part;
}

}  // namespace

std::vector<VoicedPart> voicedParts(const SpeechStretch& stretch, const std::vector<double>& chances) {
    const auto voices = together(voicesIn(chances));
    std::vector<VoicedPart> parts;
    for (std::size_t i = 0; i < voices.size(); ++i) {
        const Voice room{i == 0 ? 0 : voices[i - 1].end,
                         i + 1 == voices.size() ? std::ssize(stretch.samples) : voices[i + 1].begin};
        parts.push_back(partAround(stretch, voices[i], room));
    }
    return parts;
}

}  // namespace korvane
