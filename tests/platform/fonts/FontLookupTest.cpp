#include "platform/fonts/FontLookup.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QGuiApplication>
#include <QRawFont>
#include <thread>

namespace korvane {
namespace {

FontFace face(std::string family, std::string style, std::string name, int weight = 400,
              bool italic = false) {
    return {std::move(family), std::move(style), std::move(name), "file", weight, 100, italic, false, true};
}

FontFace emojiFace(std::string family) {
    auto made = face(std::move(family), "Regular", "Emoji");
    made.color = true;
    made.latin = false;
    return made;
}

/// A few faces as they could be installed.
FontLookup someFonts() {
    return FontLookup(
        {face("DejaVu Sans", "Bold", "DejaVuSans-Bold", 700), face("Inter", "Bold", "Inter-Bold", 700),
         face("Inter", "Bold Italic", "Inter-BoldItalic", 700, true),
         face("Inter", "Light", "Inter-Light", 300), face("Inter", "Regular", "Inter-Regular"),
         face("Odd (a|b)* [x], $1", "Reg.*", "Odd.(a|b)*", 400),
         face("Liberation Serif", "Bold", "LiberationSerif-Bold", 700),
         face("Helvetica Neue", "Light", "HelvNeue-Light", 300), emojiFace("Noto Color Emoji")});
}

TEST(FontLookup, anInstalledNameIsFoundExactly) {
    const auto fonts = someFonts();
    EXPECT_EQ(fonts.face("Inter-BoldItalic").style, "Bold Italic");
    EXPECT_EQ(fonts.face("DejaVuSans-Bold").family, "DejaVu Sans");
    EXPECT_EQ(fonts.exactFace("Inter-Black"), nullptr);
    EXPECT_EQ(fonts.exactFace("inter-bold"), nullptr) << "names are compared as they are";
}

TEST(FontLookup, oddCharactersInNamesMeanThemselves) {
    const auto fonts = someFonts();
    EXPECT_EQ(fonts.face("Odd.(a|b)*").style, "Reg.*");
    EXPECT_EQ(fonts.exactFace("Odd.a"), nullptr);
    EXPECT_EQ(fonts.font("Odd.(a|b)*", 20).families().front(), QStringLiteral("Odd (a|b)* [x], $1"));
}

TEST(FontLookup, aMissingFaceIsReplacedByTheNearestOfItsOwnFamily) {
    EXPECT_EQ(someFonts().face("Inter-Black").postScriptName, "Inter-Bold");
    EXPECT_EQ(someFonts().face("Inter-Thin").postScriptName, "Inter-Light");
    EXPECT_EQ(someFonts().face("Inter-MediumItalic").postScriptName, "Inter-BoldItalic");
    EXPECT_EQ(someFonts().face("HelveticaNeue-Bold").postScriptName, "HelvNeue-Light");
}

TEST(FontLookup, aMissingFamilyIsReplacedByAGoodLookingOneOfTheSameWeightAndSlant) {
    EXPECT_EQ(someFonts().face("Futura-Bold").postScriptName, "Inter-Bold");
    EXPECT_EQ(someFonts().face("Futura-HeavyOblique").postScriptName, "Inter-BoldItalic");
    EXPECT_EQ(someFonts().face("Futura").postScriptName, "Inter-Regular");
    EXPECT_EQ(someFonts().face("").postScriptName, "Inter-Regular");
    EXPECT_EQ(someFonts().face("TimesNewRomanPS-BoldMT").postScriptName, "LiberationSerif-Bold");
}

TEST(FontLookup, anUnknownFamilyIsBetterThanNoneAndEmojiAreTheLastChoice) {
    const FontLookup fonts(
        {emojiFace("Noto Color Emoji"), face("Unheard Of", "Heavy", "Unheard-Heavy", 900)});
    EXPECT_EQ(fonts.face("HelveticaNeue-Bold").postScriptName, "Unheard-Heavy");
    EXPECT_EQ(FontLookup({emojiFace("E")}).face("HelveticaNeue-Bold").family, "E");
}

TEST(FontLookup, withoutAnyFontItSaysWhatHelps) {
    const FontLookup none(std::vector<FontFace>{});
    EXPECT_EQ(none.exactFace("Inter-Bold"), nullptr);
    try {
        none.font("Inter-Bold", 20);
        FAIL();
    } catch (const FontError& error) {
        EXPECT_NE(std::string(error.what()).find("no font is installed"), std::string::npos);
        EXPECT_NE(std::string(error.what()).find("fonts-inter"), std::string::npos);
    }
}

TEST(FontLookup, emojiComeFromTheKnownColourFontElseFromAnother) {
    EXPECT_EQ(FontLookup({emojiFace("A Emoji"), emojiFace("Noto Color Emoji")}).emojiFamily(),
              "Noto Color Emoji");
    EXPECT_EQ(FontLookup({emojiFace("A Emoji")}).emojiFamily(), "A Emoji");
    EXPECT_FALSE(FontLookup({face("Inter", "Bold", "Inter-Bold")}).emojiFamily());
}

TEST(InstalledFonts, areListedTheSameEveryTimeWithNamesAndWeights) {
    const auto faces = installedFaces();
    ASSERT_FALSE(faces.empty());
    EXPECT_EQ(faces, installedFaces());
    for (const auto& each : faces) {
        EXPECT_FALSE(each.family.empty());
        EXPECT_FALSE(each.postScriptName.empty());
    }
    const FontLookup fonts(faces);
    ASSERT_NE(fonts.exactFace("Inter-SemiBold"), nullptr);
    EXPECT_EQ(fonts.exactFace("Inter-SemiBold")->weight, 600);
    EXPECT_TRUE(fonts.exactFace("Inter-ThinItalic")->italic);
    EXPECT_EQ(fonts.emojiFamily(), "Noto Color Emoji");
}

TEST(InstalledFonts, theDefaultStylesFaceIsReplacedByInterInBold) {
    EXPECT_EQ(FontLookup().face("HelveticaNeue-Bold").postScriptName, "Inter-Bold");
}

/// The text engine opens the very face that was asked for, for everything that is installed.
TEST(InstalledFonts, everyPostScriptNameOpensItsOwnFace) {
    const FontLookup fonts;
    for (const auto& each : fonts.faces()) {
        if (each.color)
            continue;
        const auto raw = QRawFont::fromFont(fonts.font(each.postScriptName, 40));
        const auto& wanted = *fonts.exactFace(each.postScriptName);
        // Where two foundries ship a family, the text engine adds whose it took: "Standard Symbols PS [URW
        // ]".
        const QString family = raw.familyName().section(QStringLiteral(" ["), 0, 0);
        EXPECT_EQ(family.toStdString(), wanted.family) << each.postScriptName;
        EXPECT_EQ(raw.styleName().toStdString(), wanted.style) << each.postScriptName;
    }
}

TEST(InstalledFonts, knowTheFamilyForALanguage) {
    EXPECT_EQ(FontLookup::familyForLanguage("ja"), "Noto Sans CJK JP");
    EXPECT_EQ(FontLookup::familyForLanguage("zh-cn"), "Noto Sans CJK SC");
    EXPECT_EQ(FontLookup::familyForLanguage("xx-none"), std::nullopt);
}

TEST(InstalledFonts, areFoundFromManyThreadsAtOnce) {
    const FontLookup fonts;
    std::vector<std::thread> threads;
    std::vector<int> right(4, 0);
    for (auto& count : right) {
        threads.emplace_back([&fonts, &count] {
            for (int i = 0; i < 20; ++i)
                count += FontLookup().face("HelveticaNeue-Bold") == fonts.face("HelveticaNeue-Bold") ? 1 : 0;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(right, std::vector<int>(4, 20));
}

}  // namespace
}  // namespace korvane

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
