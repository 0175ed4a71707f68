// The Whisper models of this machine, asked of the program that measures them.
#pragma once

#include <string>
#include <vector>

#include "bench/Measurements.h"

namespace korvane::bench {

struct WhisperModel {
    std::string name;
    std::string file;  ///< or what the measuring program takes for one
};

struct InstalledModels {
    std::vector<WhisperModel> models;
    std::string whyNone;  ///< empty while the build has a worker, with a model or without
};

InstalledModels installedWhisperModels(const Setting& setting);

}  // namespace korvane::bench
