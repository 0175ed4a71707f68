// Runs a job of a measuring program and takes up what it prints: lines of a word and, with tabs between them,
// values; "value" NAME NUMBER, "step" ... for the main thread under watch, any other word for rows of
// numbers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "bench/ChildProcess.h"
#include "bench/Measurements.h"

namespace korvane::bench {

struct JobOutput {
    std::map<std::string, double> values;
    std::map<std::string, std::vector<std::vector<double>>> rows;
    ResourceUse use;

    /// \throws std::out_of_range when the job did not print it
    double at(const std::string& name) const { return values.at(name); }
};

/// The path of a program that is built beside the worker.
std::string program(const Setting& setting, const char* name);

/// Where windows go. Without a display there is only memory, drawn by the processor.
std::vector<std::string> platforms();

/// The command with its windows going there.
CommandLine on(const std::string& platform, CommandLine command,
               const std::string& variable = "KORVANE_BENCH=1");

/// Runs it to its end and reports its steps.
JobOutput run(const CommandLine& command, Report& report);

}  // namespace korvane::bench
