// A desk with a transcribed video on it, whatever is said in the video.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/window/Desk.h"
#include "model/SpeechSegment.h"
#include "platform/speech/SpeechRecognizerRegistry.h"

namespace korvane::bench {

/// A recogniser that says these words at once, whatever it hears.
std::unique_ptr<SpeechRecognizerRegistry> saying(const std::vector<SpeechSegment>& words);

/// Loads the video, for transcription in English, as if it had been dropped on the window.
/// \throws std::runtime_error with what the screen says, when it is refused.
void openVideo(Desk& desk, const std::string& video);

/// Of an hour's sound, on a machine that does much else, for a recogniser that knows its words.
constexpr int kKnownWordsLimitSeconds = 180;
/// Of five minutes of speech that are listened to there.
constexpr int kListeningLimitSeconds = 1800;

/// Presses Transcribe and waits for the words. \throws std::runtime_error with what the screen says, also
/// when that takes longer than the limit
void transcribe(Desk& desk, int limitSeconds = kKnownWordsLimitSeconds);

}  // namespace korvane::bench
