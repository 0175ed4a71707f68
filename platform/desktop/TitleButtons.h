// Which buttons a window's title strip has, in which order, and on which side: as the person's desktop has
// them.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace korvane {

enum class TitleButton { close, minimize, maximize };

/// All three stand on one side: the one where the desktop puts "close". Desktops that show only "close" let
/// their own windows be minimised by other means; a window of ours has no other means.
struct TitleButtons {
    bool onLeft = false;
    std::vector<TitleButton> order{TitleButton::minimize, TitleButton::maximize, TitleButton::close};
    friend bool operator==(const TitleButtons&, const TitleButtons&) = default;
};

/// Reads a layout such as "close,minimize:maximize" or "appmenu:close": what stands left and right of the
/// colon, from left to right. Names that aren't buttons of ours are passed over.
/// \return none when the layout names no button at all, so that another source may decide.
std::optional<TitleButtons> parseButtonLayout(std::string_view layout);

/// Reads the value of gtk-decoration-layout, which is such a layout, from the text of a settings.ini.
std::optional<TitleButtons> parseGtkSettings(std::string_view text);

/// Reads ButtonsOnLeft and ButtonsOnRight of the group [org.kde.kdecoration2] from the text of a kwinrc:
/// one letter for each button, X close, I minimise, A maximise. A key that isn't there has the value that
/// desktop gives it. \return none when the group has neither key.
std::optional<TitleButtons> parseKwinSettings(std::string_view text);

}  // namespace korvane
