// Runs a program and says what it took. Keep the calling program small: a child's peak memory begins with
// what its parent held when it was started.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/ResourceUse.h"

namespace korvane::bench {

using CommandLine = std::vector<std::string>;

struct Finished {
    ResourceUse use;
    std::string output;  ///< what it wrote to standard output
};

/// Waits for the end. Standard error is shared, standard input is empty.
/// \throws std::runtime_error when it can't be started or fails
Finished runChild(const CommandLine& command);

/// Feeds the child's standard input with what `next` returns, until that is null.
/// \throws std::runtime_error as above
void feedChild(const CommandLine& command, const std::function<const std::vector<std::uint8_t>*()>& next);

}  // namespace korvane::bench
