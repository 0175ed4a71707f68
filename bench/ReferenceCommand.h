// The command lines of ffmpeg that do the same job as the export, each as good as it gets.
#pragma once

#include <string>
#include <vector>

#include "bench/ChildProcess.h"
#include "model/SpeechSegment.h"

namespace korvane::bench {

struct ReferenceJob {
    std::string video;
    std::vector<SpeechSegment> words;
    std::string subtitles;  ///< an .ass file
    std::string folder;     ///< for lists of parts
    std::string destination;
};

struct ReferenceForm {
    std::string name;
    CommandLine command;
};

/// The ways to leave out what was not chosen, times the two scalers.
std::vector<ReferenceForm> referenceForms(const ReferenceJob& job);

/// The subtitles that such a command line draws, from lines "start, tab, end, tab, text": crisp text over its
/// own blurred shadow, popping up as ours do.
std::string subtitleScript(const std::string& lines);

}  // namespace korvane::bench
