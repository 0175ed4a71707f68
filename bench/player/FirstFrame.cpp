// From pressing Preview to the first frame: sources of a minute and of an hour, few words and many.
#include <algorithm>

#include "bench/ChildProcess.h"
#include "bench/player/Sections.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

constexpr int kHour = 60;
constexpr int kFewWords = 10;
constexpr int kManyWords = 500;
constexpr int kPresses = 3;
/// The cases take turns, so that what the machine does meanwhile falls upon all of them.
constexpr int kFewestTurns = 2;
/// What doesn't grow with the source varies by less.
constexpr Goal kNoGrowth{Side::atMost, 1.3};
/// The window is open already; ffmpeg has to be started.
constexpr Goal kOfOnePicture{Side::atMost, 1.0};

struct Case {
    std::string name;
    int minutes;
    int words;
    std::vector<ResourceUse> first;    ///< to the first frame
    std::vector<ResourceUse> playing;  ///< until it plays
    std::vector<ResourceUse> firstOfProgram;
};

void press(const Setting& setting, Report& report, const std::string& platform, Case& c) {
    report.section("Preview of " + c.name + ", " + platform);
    const double seconds = 60.0 * c.minutes;
    const JobOutput job = run(on(platform, {program(setting, "korvane-bench-window"), "preview",
                                            setting.files.light(c.minutes).string(), std::to_string(seconds),
                                            std::to_string(c.words), std::to_string(kPresses)}),
                              report);
    for (const auto& [kind, to] : {std::pair{"press", &c.first}, std::pair{"first", &c.firstOfProgram}})
        for (const auto& row : job.rows.at(kind))
            to->push_back({row.at(0) / 1e3, row.at(2) / 1e3, job.use.peakBytes});
    for (const auto& row : job.rows.at("press"))
        c.playing.push_back({row.at(1) / 1e3, row.at(2) / 1e3, job.use.peakBytes});
}

/// The same picture, by the program that people would take to get one.
std::vector<ResourceUse> onePicture(const Setting& setting, int minutes, std::size_t times) {
    const std::string at = std::to_string(30.0 * minutes + 0.25);
    std::vector<ResourceUse> uses;
    while (uses.size() < times)
        uses.push_back(
            runChild({"ffmpeg", "-v", "error", "-y", "-ss", at, "-i", setting.files.light(minutes).string(),
                      "-frames:v", "1", "-vf", "crop=608:1080,scale=405:720", "-f", "rawvideo", "/dev/null"})
                .use);
    return uses;
}

}  // namespace

void measureFirstFrame(const Setting& setting, Report& report, const std::string& platform) {
    Case minute{"a minute, 10 words", 1, kFewWords, {}, {}, {}};
    Case hour{"an hour, 10 words", kHour, kFewWords, {}, {}, {}};
    Case minuteOfMany{"a minute, 500 words", 1, kManyWords, {}, {}, {}};
    Case hourOfMany{"an hour, 500 words", kHour, kManyWords, {}, {}, {}};
    std::vector<ResourceUse> picture;
    for (int i = 0; i < std::max(kFewestTurns, setting.rounds); ++i) {
        for (Case* c : {&minute, &hour, &minuteOfMany, &hourOfMany})
            press(setting, report, platform, *c);
        for (const ResourceUse& use : onePicture(setting, kHour, kPresses))
            picture.push_back(use);
    }
    report.section("Preview pressed, until the first frame, " + platform);
    for (const Case* c : {&minute, &hour, &minuteOfMany, &hourOfMany}) {
        report.runs(c->name, c->first);
        report.runs(c->name + ", playing", c->playing);
        report.runs(c->name + ", first of program", c->firstOfProgram);
    }
    report.runs("ffmpeg -ss, one picture of an hour", picture);
    report.ratio("hour / minute, 10 words", hour.first, minute.first, kNoGrowth);
    report.ratio("hour / minute, 500 words", hourOfMany.first, minuteOfMany.first, kNoGrowth);
    report.ratio("500 / 10 words, minute", minuteOfMany.first, minute.first, kNoGrowth);
    report.ratio("500 / 10 words, hour", hourOfMany.first, hour.first, kNoGrowth);
    report.ratio("hour / minute, until it plays", hour.playing, minute.playing, kNoGrowth);
    report.ratio("hour, 10 words / ffmpeg's picture", hour.first, picture, kOfOnePicture);
}

}  // namespace korvane::bench
