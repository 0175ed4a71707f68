#include "bench/whisper/InstalledModels.h"

#include <sstream>

#include "bench/ChildProcess.h"
#include "bench/window/WindowJob.h"

namespace korvane::bench {

InstalledModels installedWhisperModels(const Setting& setting) {
    InstalledModels found;
    std::istringstream lines(runChild({program(setting, "korvane-bench-whisper"), "installed"}).output);
    for (std::string kind, name, file; std::getline(lines, kind, '\t');) {
        if (kind == "none") {
            std::getline(lines, found.whyNone);
            continue;
        }
        std::getline(lines, name, '\t');
        std::getline(lines, file);
        found.models.push_back({name, file});
    }
    return found;
}

}  // namespace korvane::bench
