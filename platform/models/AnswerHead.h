// The lines with which a server's answer begins.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "platform/models/Transfer.h"

namespace korvane {

/// Takes the lines of one answer after another; each "HTTP/..." begins a new one.
class AnswerHead {
  public:
    void addLine(std::string_view line);

    /// \param status  of the last answer.
    TransferAnswer answer(int status) const;
    std::optional<std::chrono::seconds> retryAfter() const { return retryAfter_; }

  private:
    std::optional<std::uint64_t> contentLength_;
    std::optional<std::uint64_t> rangeFrom_;
    std::optional<std::uint64_t> rangeTotal_;
    std::optional<std::chrono::seconds> retryAfter_;
    std::string tag_;
    std::string date_;
    std::string contentType_;
};

}  // namespace korvane
