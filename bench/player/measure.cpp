// The preview as people meet it, and the player by itself.
#include "bench/player/QuietSound.h"
#include "bench/player/Sections.h"

namespace korvane::bench {

void measurePreview(const Setting& setting, Report& report) {
    const QuietSound sound;
    for (const std::string& platform : platforms()) {
        measureFirstFrame(setting, report, platform);
        measurePlayback(setting, report, platform);
    }
    measureLipSync(setting, report, sound.isRunning());
    measureExactSeeks(setting, report);
}

}  // namespace korvane::bench
