#include "platform/desktop/Display.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace korvane;

namespace {

const DisplayChoice qtChooses{};

TEST(Display, withoutAnyItSaysSoInOneSentence) {
    const auto choice = chooseDisplay({}, false, false);
    EXPECT_EQ(choice.problem,
              "Korvane's window needs a display, and there is none here; korvane-cli does without.");
}

TEST(Display, oneThatDoesNotAnswerIsNamed) {
    EXPECT_NE(chooseDisplay({"", "", ":77"}, false, false).problem.find("\":77\""), std::string::npos);
    EXPECT_NE(chooseDisplay({"", "wayland-7", ""}, false, false).problem.find("\"wayland-7\""),
              std::string::npos);
}

TEST(Display, theOneThatAnswersIsTaken) {
    EXPECT_EQ(chooseDisplay({"", "wayland-0", ":0"}, true, false), (DisplayChoice{"wayland", ""}));
    EXPECT_EQ(chooseDisplay({"", "wayland-0", ":0"}, false, true), (DisplayChoice{"xcb", ""}));
}

TEST(Display, whereBothAnswerTheToolkitKnowsBest) {
    EXPECT_EQ(chooseDisplay({"", "wayland-0", ":0"}, true, true), qtChooses);
}

TEST(Display, whoNamesAPlatformGetsIt) {
    EXPECT_EQ(chooseDisplay({"offscreen", "", ""}, false, false), qtChooses);
    EXPECT_EQ(chooseDisplay({"xcb", "wayland-0", ":0"}, false, true), qtChooses);
    EXPECT_EQ(chooseDisplay({"wayland;xcb", "wayland-0", ":0"}, false, true), qtChooses);
}

TEST(Display, aNamedPlatformThatCanNotBeIsAProblemOfItsName) {
    EXPECT_NE(chooseDisplay({"wayland", "", ":0"}, false, true).problem.find("QT_QPA_PLATFORM=wayland"),
              std::string::npos);
    EXPECT_FALSE(chooseDisplay({"xcb", "", ""}, false, false).problem.empty());
}

TEST(Display, socketsThatAreNotThereDoNotAnswer) {
    EXPECT_FALSE(findDisplay({"", "/nowhere/at/all", ":4711"}).problem.empty());
    EXPECT_FALSE(findDisplay({"", std::string(500, 'w'), ""}).problem.empty());
    EXPECT_FALSE(findDisplay({"", "", "no display:at all"}).problem.empty());
}

}  // namespace
