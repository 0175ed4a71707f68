#include "model/Language.h"

namespace korvane {

const std::vector<Language>& languageCatalogue() {
    static const std::vector<Language> kLanguages{
        {"ru-RU", "🇷🇺  Russian"}, {"en-US", "🇺🇸  English (US)"}, {"uk-UA", "🇺🇦  Ukrainian"},
        {"fr-FR", "🇫🇷  French"},  {"de-DE", "🇩🇪  German"},       {"es-ES", "🇪🇸  Spanish"},
        {"it-IT", "🇮🇹  Italian"}, {"zh-CN", "🇨🇳  Chinese"},      {"ja-JP", "🇯🇵  Japanese"}};
    return kLanguages;
}

}  // namespace korvane

std::size_t std::hash<korvane::Language>::operator()(const korvane::Language& language) const noexcept {
    // Mixed in order, so that swapping the two fields gives another hash.
    const std::size_t id = std::hash<std::string>{}(language.id);
    const std::size_t name = std::hash<std::string>{}(language.name);
    return id ^ (name + 0x9e3779b97f4a7c15ULL + (id << 6) + (id >> 2));
}
