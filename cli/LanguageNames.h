// The languages as a person types them.
#pragma once

#include <string>
#include <string_view>

namespace korvane::cli {

/// The catalogue's identifier for "en-US", "en_us", "EN", or "english". \throws UsageError naming the nine.
std::string languageNamed(std::string_view text);

/// "English (US)" of a catalogue entry's name, whose flag few terminals can draw.
std::string_view plainLanguageName(std::string_view name);

}  // namespace korvane::cli
