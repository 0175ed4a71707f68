// The window as people meet it: its start, its sliders, its workflow, its font menu.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/ChildProcess.h"
#include "bench/Measurements.h"
#include "bench/Statistics.h"
#include "bench/window/FontFiles.h"
#include "bench/window/Frame.h"
#include "bench/window/WindowJob.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

constexpr int kFamilies = 1000;
constexpr int kManyWords = 10'000;
constexpr int kResizedWords = 5000;
constexpr int kMinutes = 5;
/// Of a program that shows one rectangle. People call instant what takes no longer than two of these.
constexpr double kMostOfEmptyWindow = 4.0;
/// Frames drawn for moves made; a few of each hundred fall into one frame because mouse and screen keep no
/// common time.
constexpr double kDrawnMoves = 0.95;

ResourceUse startOnce(const Setting& setting, const std::string& platform, bool ours) {
    const auto now = [] {
        return std::to_string(
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
    };
    const Finished finished =
        runChild(on(platform, ours ? CommandLine{program(setting, "korvane-bench-window"), "start", now()}
                                   : CommandLine{program(setting, "korvane-bench-empty-window"), now()}));
    ResourceUse use = finished.use;
    use.wallSeconds = std::atof(finished.output.c_str()) / 1e3;
    return use;
}

void measureStart(const Setting& setting, Report& report, const std::string& platform) {
    report.section("Start to the first frame, " + platform);
    startOnce(setting, platform, true);  // the first ones read files that nobody has read yet
    startOnce(setting, platform, false);
    std::vector<ResourceUse> ours;
    std::vector<ResourceUse> empty;
    for (int i = 0; i < 4 * setting.rounds; ++i) {
        ours.push_back(startOnce(setting, platform, true));
        empty.push_back(startOnce(setting, platform, false));
    }
    report.runs("korvane", ours);
    report.runs("a window with one rectangle", empty);
    report.ratio("korvane / one rectangle", ours, empty, Goal{Side::atMost, kMostOfEmptyWindow});
}

void measureDragging(const Setting& setting, Report& report, const std::string& platform) {
    report.section("Style sliders, saved at each of 60 moves a second, " + platform);
    const auto values = run(on(platform, {program(setting, "korvane-bench-window"), "drag"}), report);
    for (const std::string slider : {"size", "position"}) {
        report.value(slider + ", saves / 60", values.at(slider + " saves/s") / kFramesPerSecond, "",
                     Goal{Side::atLeast, kDrawnMoves});
        report.value(slider + ", frames / 60", values.at(slider + " frames/s") / kFramesPerSecond, "",
                     Goal{Side::atLeast, kDrawnMoves});
        report.value(slider + ", longest gap", values.at(slider + " longest gap") / kFrameMs, "frames");
    }
}

void measureWorkflow(const Setting& setting, Report& report, const std::string& platform) {
    const std::string bench = program(setting, "korvane-bench-window");
    const std::string video = setting.files.spokenVideo(setting.rounds == 1 ? 1 : kMinutes).string();
    report.section("Main thread while " + std::filesystem::path(video).filename().string() +
                   " is transcribed, " + platform);
    const auto values = run(on(platform, {bench, "transcription", video}), report);
    report.value("recognition", values.at("seconds"), "s");
    report.value("words", values.at("words"), "");
    const std::string minute = setting.files.spokenVideo(1).string();
    for (const int words : {kResizedWords, kManyWords}) {
        report.section("Main thread with " + std::to_string(words) + " words at once, " + platform);
        const auto shown = run(on(platform, {bench, "words", minute, std::to_string(words)}), report);
        report.value("resizing", shown.at("resizing frames/s"), "frames/s");
    }
}

void measureFontMenu(const Setting& setting, Report& report, const std::string& platform) {
    report.section("Font menu with " + std::to_string(kFamilies) + " more families, " + platform);
    const std::string base = runChild({"fc-match", "-f", "%{file}", "Inter:style=Regular"}).output;
    const auto fonts = makeFontFamilies(base, setting.files.folder() / "families-1000", kFamilies);
    const std::string variable = "FONTCONFIG_FILE=" + fonts.string();
    runChild({"env", variable, "fc-list", ":", "family"});  // fills its cache
    const auto values =
        run(on(platform, {program(setting, "korvane-bench-window"), "fonts"}, variable), report);
    report.value("families", values.at("families"), "", Goal{Side::atLeast, kFamilies});
    report.value("opened in", values.at("font menu opened") / kFrameMs, "frames");
    report.value("opened again in", values.at("font menu opened again") / kFrameMs, "frames");
    report.value("scrolling, frames / 60", values.at("scrolling frames/s") / kFramesPerSecond, "",
                 Goal{Side::atLeast, kDrawnMoves});
    report.value("weights of Inter", values.at("weights"), "");
}

}  // namespace

void measureWindow(const Setting& setting, Report& report) {
    for (const std::string& platform : platforms()) {
        measureStart(setting, report, platform);
        measureDragging(setting, report, platform);
        measureWorkflow(setting, report, platform);
        measureFontMenu(setting, report, platform);
    }
}

}  // namespace korvane::bench
