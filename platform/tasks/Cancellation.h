// Stopping. Work is stopped through std::stop_token; what was stopped ends with CancellationError, which is
// never shown as a failure.
#pragma once

#include <exception>
#include <stop_token>

namespace korvane {

class CancellationError : public std::exception {
  public:
    const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// \throws CancellationError when a stop was requested.
inline void checkCancelled(const std::stop_token& stop) {
    if (stop.stop_requested())
        throw CancellationError();
}

}  // namespace korvane
