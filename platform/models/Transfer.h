// One request for a file and its answer, over whatever lies in between: redirects, proxies, TLS.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>

namespace korvane {

struct TransferRequest {
    std::string address;
    std::string proxy;       ///< empty: the environment's
    std::uint64_t from = 0;  ///< the first byte that is wanted
    std::string version;  ///< with `from`: only if the server still has this version; empty: whatever it has
    std::chrono::milliseconds silence{30000};  ///< after which it is given up
};

/// What the server says of what it sends, once redirects are done with.
struct TransferAnswer {
    int status = 0;
    std::uint64_t from = 0;                  ///< the first byte that comes
    std::optional<std::uint64_t> fileBytes;  ///< of the whole file, as far as it tells
    std::string version;                     ///< a strong tag or a date; empty when it has none
    std::string contentType;
};

/// How a request ended that wasn't stopped.
struct TransferEnd {
    int status = 0;         ///< of the last answer; 0 without one
    bool ofProxy = false;   ///< the answer is a proxy's, which has made no way to the server
    std::string failure;    ///< one sentence; empty when all that was announced has arrived
    bool hopeless = false;  ///< the same request will fail again
    std::optional<std::chrono::seconds> pause;  ///< that the server asks for
};

struct TransferCallbacks {
    /// Before the first byte of an answer that brings some or all of the file. What it throws ends the
    /// request and comes out of transfer().
    std::function<void(const TransferAnswer&)> answered;
    /// Of such answers only; may throw too.
    std::function<void(std::span<const std::byte>)> received;
    /// Ten times a second, whatever happens.
    std::function<void()> tick;
};

/// Blocks. All callbacks come on this thread.
/// \throws CancellationError within some milliseconds of the stop, also while names are looked up and
///         connections are made.
TransferEnd transfer(const TransferRequest& request, const TransferCallbacks& callbacks,
                     const std::stop_token& stop);

/// "models.example" of "https://models.example:8443/base.bin".
std::string hostOf(const std::string& address);

}  // namespace korvane
