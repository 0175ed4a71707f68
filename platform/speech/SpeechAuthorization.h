// Whether this program may recognise speech at all: the question a service asks before it starts.
#pragma once

#include <functional>

namespace korvane {

/// The answer. The numbers are fixed; an implementation may hand over others, which callers treat as a no.
enum class SpeechAuthorizationStatus : int {
    notDetermined = 0,
    denied = 1,      ///< the person refused
    restricted = 2,  ///< an administrator or a sandbox refused
    authorized = 3,
};

class SpeechAuthorization {
  public:
    virtual ~SpeechAuthorization() = default;

    /// Asks. `completion` is called once, on any thread, possibly before this returns.
    virtual void request(std::function<void(SpeechAuthorizationStatus)> completion) = 0;
};

}  // namespace korvane
