#include "model/FontCatalogue.h"

#include <QCollator>
#include <algorithm>
#include <utility>

#include "platform/fonts/InstalledFontManager.h"

namespace korvane {
namespace {

constexpr double kTestSize = 12.0;

bool canBeUsed(const FontManager& fonts, const std::string& fontName) {
    return !fontName.starts_with('.') && fonts.canOpen(fontName, kTestSize);
}

bool hasUsableMember(const FontManager& fonts, const std::string& family) {
    const auto members = fonts.availableMembers(family);
    return members && std::any_of(members->begin(), members->end(), [&fonts](const FontMember& member) {
               return member.fontName && canBeUsed(fonts, *member.fontName);
           });
}

struct Entry {
    std::string name;
    std::string postscript;
    int weightClass;
};

std::vector<std::string> sortedForPeople(const std::vector<std::string>& names) {
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<std::pair<QString, std::string>> keyed;
    for (const auto& name : names)
        keyed.emplace_back(QString::fromStdString(name), name);
    std::stable_sort(keyed.begin(), keyed.end(), [&collator](const auto& a, const auto& b) {
        return collator.compare(a.first, b.first) < 0;
    });
    std::vector<std::string> sorted;
    for (auto& [key, name] : keyed)
        sorted.push_back(std::move(name));
    return sorted;
}

}  // namespace

std::vector<std::string> usableFontFamilies(const FontManager& fonts) {
    std::vector<std::string> kept;
    for (auto& family : fonts.availableFontFamilies()) {
        if (hasUsableMember(fonts, family))
            kept.push_back(std::move(family));
    }
    return sortedForPeople(kept);
}

std::vector<SubtitleSettings::Weight> usableWeights(const FontManager& fonts, const std::string& family) {
    const auto members = fonts.availableMembers(family);
    if (!members)
        return {};
    std::vector<Entry> entries;
    for (const auto& member : *members) {
        if (!member.fontName || !member.faceName || !member.weight || !canBeUsed(fonts, *member.fontName))
            continue;
        entries.push_back(
            {member.faceName->empty() ? "Regular" : *member.faceName, *member.fontName, *member.weight});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.weightClass < b.weightClass; });
    std::vector<SubtitleSettings::Weight> weights;
    for (auto& entry : entries)
        weights.push_back({std::move(entry.name), std::move(entry.postscript)});
    return weights;
}

const std::vector<std::string>& SubtitleSettings::fontFamilies() {
    static const auto families = usableFontFamilies(InstalledFontManager::ofThisProcess());
    return families;
}

std::vector<SubtitleSettings::Weight> SubtitleSettings::weights(const std::string& family) {
    return usableWeights(InstalledFontManager::ofThisProcess(), family);
}

}  // namespace korvane
