// A reel looped in the real window, and the same reel as a file in ffplay.
#include <algorithm>
#include <cmath>

#include "bench/player/Sections.h"
#include "bench/window/Frame.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

constexpr double kReelSeconds = 10.0;
constexpr int kReelWords = 32;
/// One picture in a hundred is seen to be missing by nobody.
constexpr Goal kMissing{Side::atMost, 0.01};
constexpr Goal kNone{Side::atMost, 0.0};
constexpr Goal kOneFrame{Side::atMost, 1.0};

double playedSeconds(const Setting& setting) {
    return setting.rounds == 1 ? 20.0 : 120.0;
}

void reportPictures(const JobOutput& job, int rate, Report& report) {
    const double due = job.at("seconds") * rate;
    report.value("pictures due", due, "");
    // Counted by the clock: what the player never came to is missing, too.
    report.value("not shown / due", std::max(0.0, due - job.at("shown")) / due, "", kMissing);
    report.value("not drawn / due", std::max(0.0, due - job.at("drawn")) / due, "", kMissing);
    report.value("left out, by the player's own count", job.at("dropped") / due, "of those due");
    report.value("longest time between two frames", job.at("longest gap") / kFrameMs, "frames");
    report.value("sound underruns", job.at("underruns"), "", kNone);
    report.value("loops", job.at("laps"), "", Goal{Side::atLeast, 1.0});
}

void reportStyling(const JobOutput& job, Report& report) {
    for (const std::string kind : {"size", "position", "colour", "shadow", "font"}) {
        report.value("style " + kind + ", shown after", job.at("style " + kind) / kFrameMs, "frames",
                     kind == "font" ? std::nullopt : std::optional(kOneFrame));
        report.value("style " + kind + ", worst", job.at("worst style " + kind) / kFrameMs, "frames");
    }
}

/// ffplay, as large as our picture, for about as long as ours played.
ResourceUse playedByFfplay(const std::string& file, const std::string& platform, const JobOutput& ours) {
    const int loops = std::max(1, static_cast<int>(std::lround(ours.at("seconds") / kReelSeconds)));
    const auto pixels = [&](const char* side) { return std::to_string(std::lround(ours.at(side))); };
    const std::string driver = platform == "xcb" ? "x11" : "dummy";
    return runChild({"env", "SDL_VIDEODRIVER=" + driver, "ffplay", "-v", "error", "-nostats", "-x",
                     pixels("width"), "-y", pixels("height"), "-loop", std::to_string(loops), "-autoexit",
                     file})
        .use;
}

/// The reel that is looped, as the export writes it.
std::string exported(const Setting& setting, const std::string& video, double sourceSeconds) {
    const std::string file = (setting.files.folder() / "looped.mp4").string();
    runChild({setting.worker, "export", video, std::to_string(sourceSeconds), std::to_string(kReelSeconds),
              std::to_string(kReelWords), "1", file});
    return file;
}

void compareWithFfplay(const Setting& setting, Report& report, const std::string& platform,
                       const std::string& video, double sourceSeconds, int rate, const JobOutput& ours) {
    const ResourceUse theirs = playedByFfplay(exported(setting, video, sourceSeconds), platform, ours);
    const double their = theirs.processorSeconds / theirs.wallSeconds;
    report.value("ffplay with the exported file", their, "cores");
    report.value("processor time, ours / ffplay", ours.at("processor seconds") / ours.at("seconds") / their,
                 "");
    // As if ffplay left none out; a machine that is too busy makes ours cheap otherwise.
    report.value("the same for each picture shown",
                 ours.at("processor seconds") / ours.at("shown") / (their / rate), "");
}

void play(const Setting& setting, Report& report, const std::string& platform, const std::string& video,
          double sourceSeconds, int rate) {
    report.section("A reel of " + std::to_string(kReelWords) + " single words looped, " +
                   std::to_string(rate) + " pictures a second, " + platform);
    const JobOutput job =
        run(on(platform, {program(setting, "korvane-bench-window"), "play", video,
                          std::to_string(sourceSeconds), std::to_string(kReelSeconds),
                          std::to_string(kReelWords), std::to_string(playedSeconds(setting))}),
            report);
    reportPictures(job, rate, report);
    reportStyling(job, report);
    report.value("processor time", job.at("processor seconds") / job.at("seconds"), "cores");
    compareWithFfplay(setting, report, platform, video, sourceSeconds, rate, job);
}

}  // namespace

void measurePlayback(const Setting& setting, Report& report, const std::string& platform) {
    play(setting, report, platform, setting.files.minute().string(), 60.0, 30);
    play(setting, report, platform, setting.files.halfMinuteAt60().string(), 30.0, 60);
}

}  // namespace korvane::bench
