#include "platform/fonts/InstalledFontManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace korvane {
namespace {

using ::testing::ElementsAre;

FontFace face(std::string family, std::string style, std::string name, int weight = 400, bool italic = false,
              int widthPercent = 100) {
    return {std::move(family), std::move(style), std::move(name), "nowhere", weight,
            widthPercent,      italic,           false,           true};
}

std::vector<std::string> namesOf(const InstalledFontManager& fonts, const std::string& family) {
    std::vector<std::string> names;
    const auto members = fonts.availableMembers(family).value();
    for (const auto& member : members)
        names.push_back(member.fontName.value());
    return names;
}

TEST(InstalledFontManager, eachFamilyIsThereOnceWithItsFaces) {
    const InstalledFontManager fonts(FontLookup(
        {face("B", "Bold", "B-Bold", 700), face("B", "", "B-Regular"), face("A", "Thin", "A-Thin", 100)}));
    EXPECT_THAT(fonts.availableFontFamilies(), ElementsAre("B", "A"));
    const auto members = fonts.availableMembers("B").value();
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].fontName, "B-Bold");
    EXPECT_EQ(members[0].faceName, "Bold");
    EXPECT_EQ(members[0].weight, 700);
    EXPECT_EQ(members[1].faceName, "");
    EXPECT_EQ(fonts.availableMembers("C"), std::nullopt);
}

TEST(InstalledFontManager, amongFacesOfOneWeightThePlainOneComesLast) {
    const InstalledFontManager fonts(FontLookup({face("F", "Black", "F-Black", 900),
                                                 face("F", "Black Condensed", "F-BlackCond", 900, false, 75),
                                                 face("F", "Black Italic", "F-BlackItalic", 900, true),
                                                 face("F", "Black Wide", "F-BlackWide", 900, false, 113)}));
    EXPECT_THAT(namesOf(fonts, "F"), ElementsAre("F-BlackItalic", "F-BlackCond", "F-BlackWide", "F-Black"));
}

TEST(InstalledFontManager, aFaceThatItsNameDoesNotFindIsNotOffered) {
    const InstalledFontManager fonts(
        FontLookup({face("First", "Bold", "Same-Bold", 700), face("Second", "Bold", "Same-Bold", 700),
                    face("Second", "Light", "Second-Light", 300)}));
    EXPECT_THAT(namesOf(fonts, "Second"), ElementsAre("Second-Light"));
    EXPECT_THAT(fonts.availableFontFamilies(), ElementsAre("First", "Second"));
}

TEST(InstalledFontManager, aFamilyThatWritesNoEnglishSaysSo) {
    auto symbols = face("Symbols", "Regular", "Symbols");
    symbols.latin = false;
    const InstalledFontManager fonts(FontLookup({symbols, face("Text", "Regular", "Text")}));
    EXPECT_FALSE(fonts.writesEnglish("Symbols"));
    EXPECT_TRUE(fonts.writesEnglish("Text"));
    EXPECT_FALSE(fonts.writesEnglish("Unknown"));
}

TEST(InstalledFontManager, aFileThatIsGoneOrNoFontCannotBeOpened) {
    const QTemporaryDir folder;
    QFile text(folder.filePath(QStringLiteral("text.ttf")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no font at all");
    text.close();
    auto broken = face("Broken", "Regular", "Broken");
    broken.file = text.fileName().toStdString();
    const InstalledFontManager fonts(FontLookup({face("Gone", "Regular", "Gone"), broken}));
    EXPECT_FALSE(fonts.canOpen("Gone", 12.0));
    EXPECT_FALSE(fonts.canOpen("Broken", 12.0));
    EXPECT_FALSE(fonts.canOpen("Unknown", 12.0));
}

TEST(InstalledFontManager, whatIsInstalledCanBeOpened) {
    const auto& fonts = InstalledFontManager::ofThisProcess();
    ASSERT_FALSE(fonts.availableFontFamilies().empty());
    for (const auto& installed : fonts.lookup().faces())
        EXPECT_TRUE(fonts.canOpen(installed.postScriptName, 12.0)) << installed.postScriptName;
}

}  // namespace
}  // namespace korvane
