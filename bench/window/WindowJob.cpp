#include "bench/window/WindowJob.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "bench/window/Frame.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;

void reportStep(const std::string& line, Report& report) {
    char name[64] = {};
    char shown[160] = {};
    long answers = 0;
    double wall[2];
    double own[2];
    double control[2];
    int late[3];
    if (std::sscanf(line.c_str(), "%63[^\t]\t%ld\t%lf\t%lf\t%d\t%lf\t%lf\t%d\t%lf\t%lf\t%d\t%159[^\n]", name,
                    &answers, &wall[0], &wall[1], &late[0], &own[0], &own[1], &late[1], &control[0],
                    &control[1], &late[2], shown) < 11)
        throw std::runtime_error("korvane-bench-window printed: " + line);
    char note[320];
    std::snprintf(
        note, sizeof note,
        "%s: longest wait, 99.9 %%, and how many of %ld above %.1f ms: main thread %.1f, %.1f, %d; its own "
        "part %.1f, %.1f, %d; an idle thread %.1f, %.1f, %d; shown: %s",
        name, answers, kFrameMs, wall[0], wall[1], late[0], own[0], own[1], late[1], control[0], control[1],
        late[2], shown);
    report.note(note);
    report.value(std::string(name) + ", own part / frame", own[0] / kFrameMs, "", Goal{Side::atMost, 1.0});
}

std::vector<double> numbersOf(const std::string& line) {
    std::vector<double> numbers;
    std::istringstream fields(line);
    for (double number = 0.0; fields >> number;)
        numbers.push_back(number);
    return numbers;
}

}  // namespace

std::string program(const Setting& setting, const char* name) {
    return (std::filesystem::path(setting.worker).parent_path() / name).string();
}

std::vector<std::string> platforms() {
    const char* display = std::getenv("DISPLAY");
    return display && *display ? std::vector<std::string>{"offscreen", "xcb"}
                               : std::vector<std::string>{"offscreen"};
}

CommandLine on(const std::string& platform, CommandLine command, const std::string& variable) {
    command.insert(command.begin(), {"env", "QT_QPA_PLATFORM=" + platform, variable});
    return command;
}

JobOutput run(const CommandLine& command, Report& report) {
    const Finished finished = runChild(command);
    JobOutput output;
    output.use = finished.use;
    std::istringstream lines(finished.output);
    for (std::string line; std::getline(lines, line);) {
        const auto tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        const std::string kind = line.substr(0, tab);
        const std::string rest = line.substr(tab + 1);
        if (kind == "step")
            reportStep(rest, report);
        else if (kind == "value")
            output.values[rest.substr(0, rest.find('\t'))] = std::atof(rest.substr(rest.find('\t')).c_str());
        else
            output.rows[kind].push_back(numbersOf(rest));
    }
    return output;
}

}  // namespace korvane::bench
