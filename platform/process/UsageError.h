// The program was asked for in a way that can't be meant.
#pragma once

#include <stdexcept>

namespace korvane {

/// One sentence for the person; ends the program with the exit code for wrong usage.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace korvane
