// What a player does without a window: lip sync, loops, seeks.
#include <algorithm>
#include <cmath>

#include "bench/Statistics.h"
#include "bench/player/Sections.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

/// Lips and sound may be this far apart.
constexpr double kLipSyncMs = 20.0;
constexpr Goal kWithin{Side::atMost, 1.0};
constexpr Goal kNone{Side::atMost, 0.0};

void reportLips(const JobOutput& job, const std::string& when, Report& report) {
    const auto of = [&](const char* name) { return job.at(when + name); };
    report.value(when + "cuts", of("cuts"), "", Goal{Side::atLeast, 10.0});
    report.value(when + "cuts, other sound than picture", of("unheard"), "", kNone);
    report.value(when + "picture behind sound, median", of("median ms"), "ms");
    report.value(when + "worst picture / 20 ms", std::abs(of("worst ms")) / kLipSyncMs, "", kWithin);
    report.value(when + "loops", of("loops"), "", Goal{Side::atLeast, 1.0});
    report.value(when + "hole of the loop, pictures", std::abs(of("picture hole")), "", kWithin);
    // Found by comparing with the source's sound, to a hundredth of a sample.
    report.value(when + "hole of the loop, samples", std::abs(of("sound hole")), "", Goal{Side::atMost, 0.5});
}

void seek(const Setting& setting, Report& report, const std::string& name, const std::string& video) {
    report.section("Exact seeks, " + name);
    const std::string times = setting.rounds == 1 ? "25" : "100";
    const JobOutput job = run({program(setting, "korvane-bench-player"), "seek", video, "60", times}, report);
    std::vector<ResourceUse> ours;
    std::vector<ResourceUse> theirs;
    for (const auto& row : job.rows.at("seek")) {
        ours.push_back({row.at(0) / 1e3, row.at(1) / 1e3, job.use.peakBytes});
        theirs.push_back({row.at(2) / 1e3, row.at(3) / 1e3, job.use.peakBytes});
    }
    report.runs("player", ours);
    report.runs("libav, key picture to picture", theirs);
    report.ratio("player / libav", ours, theirs, Goal{Side::atMost, 1.3});
    const auto worst = [](const std::vector<ResourceUse>& uses) {
        double seconds = 0.0;
        for (const ResourceUse& use : uses)
            seconds = std::max(seconds, use.wallSeconds);
        return seconds;
    };
    report.value("worst of player / worst of libav", worst(ours) / worst(theirs), "",
                 Goal{Side::atMost, 1.3});
}

}  // namespace

void measureLipSync(const Setting& setting, Report& report, bool device) {
    const std::string player = program(setting, "korvane-bench-player");
    const std::string folder = setting.files.folder().string();
    const std::string seconds = setting.rounds == 1 ? "16" : "120";
    for (const std::string kind : {"even", "device"}) {
        if (kind == "device" && !device) {
            report.note("There is no sound server: pulseaudio and pactl are needed to hear a real device.");
            continue;
        }
        for (const std::string rate : {"30", "60"}) {
            report.section(
                "Lip sync at " + rate + " pictures a second, " +
                (kind == "even" ? "a device that is even by the clock" : "a sound server's device"));
            const JobOutput job = run({player, "lips", folder, rate, seconds, kind}, report);
            reportLips(job, "", report);
            report.value("left out / shown", job.at("dropped") / job.at("shown"), "",
                         Goal{Side::atMost, 0.01});
            report.value("times the device ran dry", job.at("dry"), "", kNone);
            report.value("the same by the player's own count", job.at("underruns"), "");
        }
    }
    report.section("Lip sync before and after many loops, on a simulated clock");
    const double minutes = setting.rounds == 1 ? 10.0 : 60.0;
    const JobOutput job = run({player, "drift", folder, std::to_string(minutes)}, report);
    report.value("minutes", minutes, "");
    report.value("all loops", job.at("laps"), "");
    reportLips(job, "before ", report);
    reportLips(job, "after ", report);
    report.value("drift / 20 ms",
                 std::abs(job.at("after median ms") - job.at("before median ms")) / kLipSyncMs, "",
                 Goal{Side::atMost, 0.05});
}

void measureExactSeeks(const Setting& setting, Report& report) {
    seek(setting, report, "a key picture a second", setting.files.minute().string());
    seek(setting, report, "a key picture every 8 s", setting.files.rareKeys().string());
}

}  // namespace korvane::bench
