// Something that the person asked for rightly could not be done.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace korvane::cli {

/// One sentence for the person; ends the program with the exit code for failure.
class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& sentence) : std::runtime_error(sentence) {}
    /// \param hint  what helps, on a line of its own.
    Failure(const std::string& sentence, std::string hint)
        : std::runtime_error(sentence), hint_(std::move(hint)) {}

    const std::string& hint() const { return hint_; }

  private:
    std::string hint_;
};

}  // namespace korvane::cli
