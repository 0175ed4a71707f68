// korvane-bench: sets the jobs of korvane-bench-case beside what else does them. bench/README.md says what
// each number means.
#include <sys/sysinfo.h>

#include <QJsonDocument>
#include <cstdio>
#include <exception>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "bench/Measurements.h"

using namespace korvane::bench;

namespace {

constexpr const char* kUsage =
    "Usage: korvane-bench --worker PROGRAM --files FOLDER [--quick] [--speech-hour] [--rounds N]\n"
    "                     [--only "
    "export|extraction|lengths|memory|recognition|tokens|window|preview|whisper|\n"
    "                             word-timing]... [--json FILE]\n"
    "  --quick        one round, nothing longer than a minute\n"
    "  --speech-hour  recognise an hour of speech as well, with every model\n"
    "Ends with 0 when every goal was reached, 1 when one was missed or a job failed, 2 for wrong usage.\n";

struct Options {
    std::string worker;
    std::string files;
    std::string json;
    std::set<std::string> only;
    int rounds = 5;
    bool quick = false;
    bool speechHour = false;

    bool wants(const char* measurement) const { return only.empty() || only.contains(measurement); }
};

std::optional<Options> parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (name == "--quick") {
            options.quick = true;
            options.rounds = 1;
        } else if (name == "--speech-hour") {
            options.speechHour = true;
        } else if (i + 1 == arguments.size()) {
            return std::nullopt;
        } else if (name == "--worker") {
            options.worker = arguments[++i];
        } else if (name == "--files") {
            options.files = arguments[++i];
        } else if (name == "--json") {
            options.json = arguments[++i];
        } else if (name == "--only") {
            options.only.insert(arguments[++i]);
        } else if (name == "--rounds") {
            options.rounds = std::atoi(arguments[++i].c_str());
        } else {
            return std::nullopt;
        }
    }
    if (options.worker.empty() || options.files.empty() || options.rounds < 1)
        return std::nullopt;
    return options;
}

void describeMachine(Report& report) {
    struct sysinfo memory {};
    sysinfo(&memory);
    double load[1] = {0.0};
    getloadavg(load, 1);
    report.section("Machine");
    report.value("cores", std::thread::hardware_concurrency(), "");
    report.value("memory", static_cast<double>(memory.totalram) * memory.mem_unit / 1e9, "GB");
    report.value("load before", load[0], "programs that want to run; wall times count only when near 0");
}

void measure(const Options& options, Report& report) {
    const Setting setting{options.worker, SourceFiles(options.files), options.rounds};
    describeMachine(report);
    if (options.wants("export"))
        measureExport(setting, report);
    if (options.wants("extraction"))
        measureExtraction(setting, report, 1);
    if (options.wants("extraction") && !options.quick)
        measureExtraction(setting, report, 10);
    if (options.wants("memory"))
        measureMinuteMemory(setting, report);
    if (options.wants("lengths") && !options.quick)
        measureLengths(setting, report);
    if (options.wants("tokens"))
        measureTokens(setting, report);
    if (options.wants("window"))
        measureWindow(setting, report);
    if (options.wants("preview"))
        measurePreview(setting, report);
    if (options.wants("whisper"))
        measureWhisper(setting, report, options.speechHour);
    if (options.wants("word-timing"))
        measureWordTiming(setting, report, options.quick);
    if (!options.wants("recognition"))
        return;
    measureRecognition(setting, report, 1);
    if (!options.quick)
        measureRecognition(setting, report, 15);
    if (options.speechHour)
        measureRecognition(setting, report, 60);
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = parse({argv + 1, argv + argc});
    if (!options) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    try {
        Report report;
        measure(*options, report);
        if (!options->json.empty())
            std::ofstream(options->json) << QJsonDocument(report.json()).toJson().toStdString();
        return report.allGoalsReached() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
