// A language and region, as speech recognisers are asked for it. Standard library only.
#pragma once

#include <string>

namespace korvane {

/// A BCP-47 identifier such as "en-US". Nothing is normalised: the identifier is shown to people as it came.
struct Locale {
    std::string identifier;
    friend bool operator==(const Locale&, const Locale&) = default;
};

}  // namespace korvane
