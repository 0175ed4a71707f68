// One language that speech can be recognised in, and the fixed list of them. Plain values; any thread.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/locale/Locale.h"

namespace korvane {

/// `id` alone is the identity of an entry in a list; equality and hash look at both fields.
struct Language {
    std::string id;    ///< BCP-47 with a region, e.g. "en-US"
    std::string name;  ///< as the picker shows it: flag, two blanks, English name

    Language(std::string identifier, std::string displayName)
        : id(std::move(identifier)), name(std::move(displayName)) {}

    /// What the recogniser is asked for; made anew on every call.
    Locale locale() const { return {id}; }

    friend bool operator==(const Language&, const Language&) = default;
};

/// The nine languages in the order in which they are offered; the first is the one chosen at the start.
/// Made on first use, then never changed.
const std::vector<Language>& languageCatalogue();

}  // namespace korvane

template <>
struct std::hash<korvane::Language> {
    std::size_t operator()(const korvane::Language& language) const noexcept;
};
