#include "platform/desktop/TitleButtons.h"

#include <gtest/gtest.h>

#include <string>

using namespace korvane;

namespace {

/// "<" or ">" for the side, then one letter for each button: x close, i minimise, a maximise.
std::string shown(const std::optional<TitleButtons>& buttons) {
    if (!buttons)
        return "none";
    std::string text = buttons->onLeft ? "<" : ">";
    for (const auto button : buttons->order)
        text += button == TitleButton::close ? 'x' : button == TitleButton::minimize ? 'i' : 'a';
    return text;
}

struct Case {
    const char* text;
    const char* expected;
};

TEST(TitleButtons, withoutADesktopTheyStandOnTheRightAsMostPeopleKnowThem) {
    EXPECT_EQ(shown(TitleButtons()), ">iax");
}

TEST(TitleButtons, aLayoutSaysSideAndOrder) {
    const Case cases[] = {
        {"close,minimize,maximize:", "<xia"},
        {"close,maximize,minimize:menu", "<xai"},
        {"appmenu:minimize,maximize,close", ">iax"},
        {":maximize,minimize,close", ">aix"},
        {"menu:minimize , maximize , close", ">iax"},
        {"'menu:minimize,maximize,close'", ">iax"},
        {"\"close,minimize:\"", "<xia"},
        {"minimize,maximize,close", "<iax"},  // no colon: everything stands on the left
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(parseButtonLayout(text)), expected) << text;
}

TEST(TitleButtons, allThreeStandWhereCloseIs) {
    const Case cases[] = {
        {"appmenu:close", ">iax"},
        {"close:", "<xia"},
        {"close:menu", "<xia"},
        {"close,minimize:maximize", "<xia"},
        {"minimize:maximize,close", ">iax"},
        {"close:minimize,maximize", "<xia"},
        {":minimize", ">aix"},
        {"maximize:", "<xai"},
        {"minimize:maximize", ">iax"},
        {":close,close,close", ">iax"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(parseButtonLayout(text)), expected) << text;
}

TEST(TitleButtons, aLayoutWithoutButtonsSaysNothing) {
    for (const char* text : {"", ":", "''", "'", "menu:appmenu", "Close:", ",,:,,", "klose:minimise"})
        EXPECT_EQ(shown(parseButtonLayout(text)), "none") << text;
}

TEST(TitleButtons, theGtkFileIsReadInItsGroupOnly) {
    EXPECT_EQ(shown(parseGtkSettings("[Settings]\ngtk-theme-name=X\ngtk-decoration-layout=close:menu\n")),
              "<xia");
    EXPECT_EQ(shown(parseGtkSettings("[Settings]\r\n gtk-decoration-layout = icon:minimize,close \r\n")),
              ">aix");
    EXPECT_EQ(shown(parseGtkSettings("[Other]\ngtk-decoration-layout=close:\n")), "none");
    EXPECT_EQ(shown(parseGtkSettings("[Settings]\n#gtk-decoration-layout=close:\n")), "none");
    EXPECT_EQ(shown(parseGtkSettings("")), "none");
    EXPECT_EQ(shown(parseGtkSettings(std::string(3, '\0'))), "none");
}

TEST(TitleButtons, theKwinFileHasOneLetterForEachButton) {
    const std::string group = "[org.kde.kdecoration2]\n";
    const Case cases[] = {
        {"ButtonsOnLeft=XIA\nButtonsOnRight=\n", "<xia"},
        {"ButtonsOnLeft=M\nButtonsOnRight=IAX\n", ">iax"},
        {"ButtonsOnLeft=XAI\nButtonsOnRight=HS\n", "<xai"},
        {"ButtonsOnLeft=MSF\n", ">iax"},  // the right side is as that desktop has it unasked
        {"ButtonsOnRight=_X\n", ">iax"},
        {"ButtonsOnLeft=X\n", "<xia"},  // close may stand twice; the left one is nearer to what was set
        {"BorderSize=None\n", "none"},
        {"ButtonsOnLeft=\nButtonsOnRight=\n", "none"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(parseKwinSettings(group + text)), expected) << text;
    EXPECT_EQ(shown(parseKwinSettings("[Windows]\nButtonsOnLeft=XIA\n")), "none");
}

}  // namespace
