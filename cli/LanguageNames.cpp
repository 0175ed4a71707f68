#include "cli/LanguageNames.h"

#include <algorithm>
#include <cctype>

#include "model/Language.h"
#include "platform/process/UsageError.h"

namespace korvane::cli {
namespace {

std::string folded(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return c == '_' ? '-' : static_cast<char>(std::tolower(c)); });
    return result;
}

bool isSpellingOf(const Language& language, const std::string& wanted) {
    const std::string id = folded(language.id);
    const std::string name = folded(plainLanguageName(language.name));
    return wanted == id || wanted == id.substr(0, id.find('-')) || wanted == name ||
           wanted == name.substr(0, name.find(' '));
}

}  // namespace

std::string_view plainLanguageName(std::string_view name) {
    const auto blanks = name.find("  ");
    return blanks == std::string_view::npos ? name : name.substr(blanks + 2);
}

std::string languageNamed(std::string_view text) {
    const std::string wanted = folded(text);
    std::string known;
    for (const auto& language : languageCatalogue()) {
        if (isSpellingOf(language, wanted))
            return language.id;
        known += (known.empty() ? "" : ", ") + language.id;
    }
    throw UsageError("\"" + std::string(text) + "\" is none of the nine languages: " + known + ".");
}

}  // namespace korvane::cli
