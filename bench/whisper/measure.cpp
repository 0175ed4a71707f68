// The Whisper engine: start, speed, memory, cancelling; with every installed model, and with two that only
// say a script, which is all that a machine without a model can measure.
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/ChildProcess.h"
#include "bench/Measurements.h"
#include "bench/whisper/InstalledModels.h"
#include "bench/window/WindowJob.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

/// A person who stops something has it stopped by then.
constexpr double kStoppedMs = 300.0;
/// An hour is recognised piece by piece, so it takes little more memory than a minute.
constexpr double kMostOfMinute = 1.3;
constexpr const char* kScripted = "scripted:";

double secondsOf(const std::filesystem::path& sound) {
    return std::atof(runChild({"ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0",
                               sound.string()})
                         .output.c_str());
}

ResourceUse useOf(const JobOutput& job) {
    return {job.at("seconds"), job.at("processor seconds"), job.use.peakBytes};
}

void reportSpeed(const std::vector<JobOutput>& rounds, double seconds, Report& report) {
    std::vector<ResourceUse> uses;
    for (const JobOutput& round : rounds)
        uses.push_back(useOf(round));
    report.runs("a minute, once loaded", uses);
    report.value("real-time factor", uses.front().wallSeconds / seconds, "of the sound's length");
    report.value("real-time factor of one core", uses.front().processorSeconds / seconds,
                 "of the sound's length");
    report.value("words", rounds.front().at("words"), "");
}

void reportCancelling(const JobOutput& job, Report& report) {
    report.value("cancelled while it worked", job.at("cancelled"), "times", Goal{Side::atLeast, 1.0});
    report.value("slowest answer to a cancellation", job.at("answer to a cancellation") * 1e3, "ms",
                 Goal{Side::atMost, kStoppedMs});
    report.value("worker at rest after at most", job.at("worker at rest") * 1e3, "ms");
    report.value("workers that had to be ended for it", job.at("workers ended"), "");
    report.value("a minute right afterwards", job.at("right afterwards"), "s");
}

void measureModel(const Setting& setting, Report& report, const WhisperModel& model, bool hour) {
    const std::string bench = program(setting, "korvane-bench-whisper");
    const auto minute = setting.files.speech(1);
    const double seconds = secondsOf(minute);
    const bool isScripted = model.file.starts_with(kScripted);
    report.section("Whisper: " + model.name);
    std::vector<JobOutput> ours;
    std::vector<ResourceUse> uses;
    std::vector<ResourceUse> peers;
    for (int i = 0; i < setting.rounds; ++i) {
        ours.push_back(run({bench, "minute", model.file, minute.string()}, report));
        uses.push_back(useOf(ours.back()));
        if (!isScripted)
            peers.push_back(useOf(run({bench, "pocketsphinx", minute.string()}, report)));
    }
    report.value("threads", ours.front().at("threads"), "");
    report.value("start and model", ours.front().at("start") * 1e3, "ms");
    reportSpeed(ours, seconds, report);
    if (!peers.empty()) {
        report.runs("PocketSphinx, its model included", peers);
        report.ratio("Whisper / PocketSphinx", uses, peers, std::nullopt);
    }
    reportCancelling(ours.front(), report);
    report.value("worker's memory, a minute", ours.front().at("worker's memory"), "MB");
    if (!hour)
        return;
    const auto whole = run({bench, "long", model.file, setting.files.speech(60).string()}, report);
    report.value("an hour", whole.at("seconds"), "s");
    report.value("worker's memory, an hour", whole.at("worker's memory"), "MB");
    report.value("own memory, an hour", whole.at("own memory"), "MB");
    const auto both = [](const JobOutput& job) { return job.at("worker's memory") + job.at("own memory"); };
    report.value("hour / minute, memory of both", both(whole) / both(ours.front()), "",
                 Goal{Side::atMost, kMostOfMinute});
}

}  // namespace

void measureWhisper(const Setting& setting, Report& report, bool hourOfEveryModel) {
    const InstalledModels installed = installedWhisperModels(setting);
    if (!installed.whyNone.empty()) {
        report.section("Whisper");
        report.note(installed.whyNone);
        return;
    }
    const bool isQuick = setting.rounds == 1;
    measureModel(setting, report, {"a script, one layer", std::string(kScripted) + "1"}, !isQuick);
    // An encoder as deep as a large model's: what a stop may have to wait for.
    measureModel(setting, report, {"a script, 32 layers", std::string(kScripted) + "32"}, false);
    for (const WhisperModel& model : installed.models)
        measureModel(setting, report, model, hourOfEveryModel);
}

}  // namespace korvane::bench
