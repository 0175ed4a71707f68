// Where the diagnostic lines of composition and export go: standard output, unless a caller gives another
// sink.
#pragma once

#include <functional>
#include <string>

namespace korvane {

/// Receives whole lines without the line break, from the thread that runs the operation.
using DiagnosticLog = std::function<void(const std::string& line)>;

/// Writes each line to standard output and flushes.
DiagnosticLog standardOutputLog();
/// Drops every line.
DiagnosticLog silentLog();

}  // namespace korvane
