// The measurements, one function each; every one makes its sources, runs its jobs in turns, and reports.
#pragma once

#include <filesystem>
#include <string>

#include "bench/Report.h"
#include "bench/SourceFiles.h"

namespace korvane::bench {

struct Setting {
    std::string worker;  ///< korvane-bench-case
    SourceFiles files;
    int rounds = 5;
};

/// The export against ffmpeg's command line and against the encoder alone.
void measureExport(const Setting& setting, Report& report);
/// Taking the sound out of so many minutes against encoding it anew.
void measureExtraction(const Setting& setting, Report& report, int minutes);
/// The same reel out of a minute and out of an hour, and the peak memory of short and long reels.
void measureLengths(const Setting& setting, Report& report);
/// Peak memory of reels of a minute's source.
void measureMinuteMemory(const Setting& setting, Report& report);
/// Recognition of so many minutes of speech.
void measureRecognition(const Setting& setting, Report& report, int minutes);
/// The token area with 5,000 words against as many tokens at once.
void measureTokens(const Setting& setting, Report& report);
/// The real window: start, sliders, the main thread in every step of the work, font menu.
void measureWindow(const Setting& setting, Report& report);
/// The preview in the real window, and its player: first frame, loops, lip sync, styling, seeks.
void measurePreview(const Setting& setting, Report& report);
/// The Whisper worker: start, speed, memory, cancelling. An hour takes a real model minutes to hours.
void measureWhisper(const Setting& setting, Report& report, bool hourOfEveryModel);
/// The times of the words against speech whose words have known times; the clean recordings only, or all.
void measureWordTiming(const Setting& setting, Report& report, bool cleanOnly);

}  // namespace korvane::bench
