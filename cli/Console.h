// Everything that the program prints. Lives on the main thread, so that a progress line, a diagnostic line
// and a result never run into each other.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Progress.h"

namespace korvane::cli {

class Console {
  public:
    Console();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Whether only results and errors are printed; not at first.
    void setQuiet(bool quiet) { quiet_ = quiet; }

    /// The clock of the time left starts anew.
    void beginOperation();
    /// Shows how far a phase is, 0 to 1. On a terminal one line is drawn over, elsewhere a line is printed
    /// now and then.
    /// \param detail  stands where the time left does; empty: that time, as it is estimated.
    void showProgress(Phase phase, double fraction, const std::string& detail = {});
    /// Takes the progress line away; what was shown on a terminal leaves no trace.
    void endProgress();

    /// To standard output. \throws Failure when it can't be written.
    void result(std::string_view text);
    /// One line to standard output; a reader that has gone doesn't matter.
    void diagnostic(std::string_view line);
    /// One line to standard error.
    void note(std::string_view line);
    /// One sentence to standard error as "korvane-cli: ...", also when quiet.
    void error(std::string_view sentence);
    /// A line behind an error that says what helps, also when quiet.
    void errorHint(std::string_view line);

  private:
    void draw();
    void erase();

    bool quiet_ = false;
    bool terminal_;  ///< standard error can redraw a line
    std::chrono::steady_clock::time_point started_;
    std::optional<ProgressState> state_;
    std::string drawn_;  ///< what the terminal shows; empty: nothing
    PlainProgressThinning thinning_;
};

}  // namespace korvane::cli
