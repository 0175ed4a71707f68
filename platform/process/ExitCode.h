// How the program ends, as the help and the manual say it.
#pragma once

namespace korvane {

enum class ExitCode {
    done = 0,
    failed = 1,
    wrongUsage = 2,
    stopped = 130,  ///< as a shell reports a program that Ctrl-C ended
};

}  // namespace korvane
