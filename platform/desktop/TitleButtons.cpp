#include "platform/desktop/TitleButtons.h"

#include <algorithm>
#include <string>

namespace korvane {
namespace {

using Buttons = std::vector<TitleButton>;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Splits off everything before the first `mark`, and the mark; all of it when there is none.
std::string_view takeUntil(std::string_view& rest, char mark) {
    const auto at = rest.find(mark);
    const auto head = rest.substr(0, at);
    rest = at == std::string_view::npos ? std::string_view() : rest.substr(at + 1);
    return head;
}

bool contains(const Buttons& buttons, TitleButton button) {
    return std::find(buttons.begin(), buttons.end(), button) != buttons.end();
}

void addOnce(Buttons& buttons, TitleButton button) {
    if (!contains(buttons, button))
        buttons.push_back(button);
}

Buttons namedButtons(std::string_view names) {
    Buttons buttons;
    while (!names.empty()) {
        const auto name = trimmed(takeUntil(names, ','));
        if (name == "close")
            addOnce(buttons, TitleButton::close);
        else if (name == "minimize")
            addOnce(buttons, TitleButton::minimize);
        else if (name == "maximize")
            addOnce(buttons, TitleButton::maximize);
    }
    return buttons;
}

Buttons letteredButtons(std::string_view letters) {
    Buttons buttons;
    for (const char letter : letters) {
        if (letter == 'X')
            addOnce(buttons, TitleButton::close);
        else if (letter == 'I')
            addOnce(buttons, TitleButton::minimize);
        else if (letter == 'A')
            addOnce(buttons, TitleButton::maximize);
    }
    return buttons;
}

/// The side with "close" keeps its order; what it lacks joins on the side of the window's middle.
std::optional<TitleButtons> onOneSide(const Buttons& left, const Buttons& right) {
    if (left.empty() && right.empty())
        return std::nullopt;
    const bool onLeft = contains(left, TitleButton::close) || right.empty();
    Buttons order = onLeft ? left : right;
    if (onLeft) {
        if (!contains(order, TitleButton::close))
            order.insert(order.begin(), TitleButton::close);
        addOnce(order, TitleButton::minimize);
        addOnce(order, TitleButton::maximize);
        return TitleButtons{true, order};
    }
    addOnce(order, TitleButton::close);
    for (const auto button : {TitleButton::maximize, TitleButton::minimize})
        if (!contains(order, button))
            order.insert(order.begin(), button);
    return TitleButtons{false, order};
}

/// The value of `key` in `group` of an ini file; the last one counts, as for those who wrote it.
std::optional<std::string_view> iniValue(std::string_view text, std::string_view group,
                                         std::string_view key) {
    std::optional<std::string_view> value;
    bool inGroup = false;
    while (!text.empty()) {
        const auto line = trimmed(takeUntil(text, '\n'));
        if (line.starts_with('[')) {
            inGroup = line.size() > 2 && line.ends_with(']') && line.substr(1, line.size() - 2) == group;
            continue;
        }
        auto rest = line;
        if (inGroup && line.find('=') != std::string_view::npos && trimmed(takeUntil(rest, '=')) == key)
            value = trimmed(rest);
    }
    return value;
}

}  // namespace

std::optional<TitleButtons> parseButtonLayout(std::string_view layout) {
    // Some desktops hand out their strings with the quotes of their own notation.
    layout = trimmed(layout);
    if (layout.size() >= 2 && layout.front() == layout.back() &&
        (layout.front() == '\'' || layout.front() == '"'))
        layout = layout.substr(1, layout.size() - 2);
    const auto left = namedButtons(takeUntil(layout, ':'));
    return onOneSide(left, namedButtons(layout));
}

std::optional<TitleButtons> parseGtkSettings(std::string_view text) {
    const auto layout = iniValue(text, "Settings", "gtk-decoration-layout");
    return layout ? parseButtonLayout(*layout) : std::nullopt;
}

std::optional<TitleButtons> parseKwinSettings(std::string_view text) {
    constexpr std::string_view group = "org.kde.kdecoration2";
    const auto left = iniValue(text, group, "ButtonsOnLeft");
    const auto right = iniValue(text, group, "ButtonsOnRight");
    if (!left && !right)
        return std::nullopt;
    return onOneSide(letteredButtons(left.value_or("MS")), letteredButtons(right.value_or("HIAX")));
}

}  // namespace korvane
