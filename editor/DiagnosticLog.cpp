#include "editor/DiagnosticLog.h"

#include <cstdio>

namespace korvane {

DiagnosticLog standardOutputLog() {
    return [](const std::string& line) {
        // One write for the whole line, so that lines of two threads don't mix.
        const std::string text = line + "\n";
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    };
}

DiagnosticLog silentLog() {
    return [](const std::string&) {};
}

}  // namespace korvane
