#include "ui/style/StyleEditor.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <thread>

#include "EditedStyle.h"
#include "platform/fonts/FontLookup.h"

namespace korvane {
namespace {

TEST(StyleEditor, showsTheStyleAsItIs) {
    EditedStyle style;
    const auto& editor = style.editor;
    EXPECT_EQ(editor.fontFamilyName(), QStringLiteral("Helvetica Neue"));
    EXPECT_EQ(editor.fontPostscriptName(), QStringLiteral("HelveticaNeue-Bold"));
    EXPECT_EQ(editor.fontSize(), 72.0);
    EXPECT_EQ(editor.textColor(), QColor(Qt::white));
    EXPECT_TRUE(editor.hasShadow());
    EXPECT_EQ(editor.shadowColor(), QColor(Qt::black));
    EXPECT_EQ(editor.shadowRadius(), 8.0);
    EXPECT_EQ(editor.verticalPosition(), 0.85);
    EXPECT_TRUE(editor.hasPopAnimation());
    EXPECT_EQ(editor.fontSizeLabel(), QStringLiteral("72pt"));
    EXPECT_EQ(editor.shadowRadiusLabel(), QStringLiteral("8px"));
    EXPECT_EQ(style.writes, 0);
}

struct Change {
    const char* name;
    const char* signal;
    void (*byEditor)(StyleEditor&);
    void (*expected)(SubtitleSettings&);
};

class EachChange : public ::testing::TestWithParam<Change> {};

TEST_P(EachChange, changesItsOwnFieldAloneTellsSoOnceAndIsSavedAtOnce) {
    EditedStyle style;
    SubtitleSettings expected;
    GetParam().expected(expected);
    QSignalSpy told(&style.editor, GetParam().signal);
    ASSERT_TRUE(told.isValid());
    GetParam().byEditor(style.editor);
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(style.writes, 1);
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(SubtitleSettings::load(style.store), expected);
    GetParam().byEditor(style.editor);
    EXPECT_EQ(style.writes, 1) << "the same again is no change";
    EXPECT_EQ(told.count(), 1);
}

const Change kChanges[] = {
    {"face", SIGNAL(fontPostscriptNameChanged()),
     [](StyleEditor& e) { e.setFontPostscriptName(QStringLiteral("Serif-Regular")); },
     [](SubtitleSettings& s) { s.fontPostscriptName = "Serif-Regular"; }},
    {"size", SIGNAL(fontSizeChanged()), [](StyleEditor& e) { e.setFontSize(36); },
     [](SubtitleSettings& s) { s.fontSize = 36; }},
    {"textColor", SIGNAL(textColorChanged()), [](StyleEditor& e) { e.setTextColor(QColor(51, 102, 255)); },
     [](SubtitleSettings& s) {
         s.textColorR = 51 / 255.0;
         s.textColorG = 102 / 255.0;
         s.textColorB = 1.0;
     }},
    {"shadow", SIGNAL(hasShadowChanged()), [](StyleEditor& e) { e.setHasShadow(false); },
     [](SubtitleSettings& s) { s.hasShadow = false; }},
    {"shadowColor", SIGNAL(shadowColorChanged()), [](StyleEditor& e) { e.setShadowColor(QColor(0, 0, 17)); },
     [](SubtitleSettings& s) { s.shadowColorB = 17 / 255.0; }},
    {"blur", SIGNAL(shadowRadiusChanged()), [](StyleEditor& e) { e.setShadowRadius(32); },
     [](SubtitleSettings& s) { s.shadowRadius = 32; }},
    {"position", SIGNAL(verticalPositionChanged()), [](StyleEditor& e) { e.setVerticalPosition(1.0 / 3.0); },
     [](SubtitleSettings& s) { s.verticalPosition = 1.0 / 3.0; }},
    {"pop", SIGNAL(hasPopAnimationChanged()), [](StyleEditor& e) { e.setHasPopAnimation(false); },
     [](SubtitleSettings& s) { s.hasPopAnimation = false; }},
};
INSTANTIATE_TEST_SUITE_P(StyleEditor, EachChange, ::testing::ValuesIn(kChanges),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(StyleEditor, aNewFamilyBringsItsLastWeightInTheSameChange) {
    EditedStyle style;
    style.editor.chooseFamily(QStringLiteral("Inter"));
    EXPECT_EQ(style.settings.fontFamilyName, "Inter");
    EXPECT_EQ(style.settings.fontPostscriptName, "Inter-Bold");
    EXPECT_EQ(style.writes, 1);
    style.editor.setFontFamilyName(QStringLiteral("Serif"));
    EXPECT_EQ(style.settings.fontPostscriptName, "Serif-Regular");
}

TEST(StyleEditor, aFamilyWithoutWeightsKeepsTheFaceBefore) {
    EditedStyle style;
    style.editor.chooseFamily(QStringLiteral("Bare"));
    EXPECT_EQ(style.settings.fontFamilyName, "Bare");
    EXPECT_EQ(style.settings.fontPostscriptName, "HelveticaNeue-Bold");
}

TEST(StyleEditor, theSameFamilyAgainKeepsTheChosenWeight) {
    EditedStyle style;
    style.readFonts();
    style.editor.chooseFamily(QStringLiteral("Inter"));
    style.editor.chooseWeight(0);
    EXPECT_EQ(style.settings.fontPostscriptName, "Inter-Light");
    style.editor.chooseFamily(QStringLiteral("Inter"));
    EXPECT_EQ(style.settings.fontPostscriptName, "Inter-Light");
}

TEST(StyleEditor, aWeightIsChosenByItsLine) {
    EditedStyle style;
    style.readFonts();
    style.editor.chooseFamily(QStringLiteral("Inter"));
    EXPECT_EQ(style.editor.weightNames(),
              QStringList({QStringLiteral("Light"), QStringLiteral("Regular"), QStringLiteral("Bold")}));
    EXPECT_EQ(style.editor.weightIndex(), 2);
    auto expected = style.settings;
    expected.fontPostscriptName = "Inter-Regular";
    style.editor.chooseWeight(1);
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(style.editor.weightIndex(), 1);
    EXPECT_EQ(style.editor.weightName(), QStringLiteral("Regular"));
    for (const int none : {-1, 3, 1000})
        style.editor.chooseWeight(none);
    EXPECT_EQ(style.settings, expected);
}

TEST(StyleEditor, theFacesOfAFamilyAreOpenedOnceForAChange) {
    EditedStyle style;
    style.readFonts();
    const int before = style.fonts.weightsAsked;
    style.editor.chooseFamily(QStringLiteral("Serif"));
    EXPECT_EQ(style.fonts.weightsAsked, before + 1);
    style.editor.setFontSize(40);
    style.editor.chooseWeight(0);
    EXPECT_EQ(style.fonts.weightsAsked, before + 1);
}

TEST(StyleEditor, aStyleChangedFromOutsideIsShownAndNotWrittenBack) {
    EditedStyle style;
    style.readFonts();
    QSignalSpy weights(&style.editor, &StyleEditor::weightsChanged);
    SubtitleSettings other;
    other.fontFamilyName = "Serif";
    other.fontPostscriptName = "Serif-Italic";
    other.verticalPosition = 0.1;
    style.set(other);
    EXPECT_EQ(style.settings, other);
    EXPECT_EQ(style.writes, 1);
    EXPECT_EQ(weights.count(), 1);
    EXPECT_EQ(style.editor.weightIndex(), 0);
    EXPECT_EQ(style.editor.verticalPosition(), 0.1);
}

TEST(StyleEditor, aFaceThatIsNotInstalledIsNamedWithWhatTakesItsPlaceAndStaysStored) {
    EditedStyle style;
    EXPECT_EQ(style.editor.fontNote(), QString()) << "nothing is said before the fonts were read";
    style.readFonts();
    EXPECT_EQ(style.editor.fontNote(),
              QStringLiteral("Helvetica Neue isn’t installed here; Inter Bold takes its place."));
    EXPECT_EQ(style.editor.weightIndex(), -1);
    EXPECT_EQ(style.editor.weightName(), QStringLiteral("Bold")) << "as the stored name says";
    EXPECT_EQ(style.settings, SubtitleSettings());
    style.editor.chooseFamily(QStringLiteral("Inter"));
    EXPECT_EQ(style.editor.fontNote(), QString());
}

TEST(StyleEditor, ofAnInstalledFamilyTheMissingFaceIsNamed) {
    SubtitleSettings stored;
    stored.fontFamilyName = "Inter";
    stored.fontPostscriptName = "Inter-SemiBoldItalic";
    EditedStyle style(MadeUpFonts::few(), stored);
    style.readFonts();
    EXPECT_EQ(style.editor.fontNote(),
              QStringLiteral("Inter Semi Bold Italic isn’t installed here; Inter Bold takes its place."));
}

TEST(StyleEditor, withoutAnyFontItSaysWhatHelps) {
    auto fonts = MadeUpFonts::few();
    EditedStyle style(std::move(fonts));
    auto asked = style.fonts.asked();
    asked.face = [](const std::string&) -> const FontFace& { throw FontError("no font is installed"); };
    StyleEditor editor([&]() -> const SubtitleSettings& { return style.settings; }, [](const auto&) {},
                       asked);
    editor.prefetchFonts();
    while (editor.fontFamilies().isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(editor.fontNote(), QStringLiteral("no font is installed"));
}

TEST(StyleEditor, readsTheFontsOnceAndOnAThreadOfItsOwn) {
    EditedStyle style;
    std::vector<std::thread::id> asked;
    auto fonts = style.fonts.asked();
    fonts.families = [&asked] {
        asked.push_back(std::this_thread::get_id());
        return std::vector<std::string>{"Inter"};
    };
    StyleEditor editor([&]() -> const SubtitleSettings& { return style.settings; }, [](const auto&) {},
                       fonts);
    EXPECT_TRUE(asked.empty());
    editor.prefetchFonts();
    editor.prefetchFonts();
    while (editor.fontFamilies().isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    editor.prefetchFonts();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_NE(asked.front(), std::this_thread::get_id());
}

TEST(StyleEditor, mayGoWhileItReadsTheFonts) {
    EditedStyle style;
    style.editor.prefetchFonts();
}

TEST(StyleEditor, numbersAreCutNotRounded) {
    SubtitleSettings stored;
    stored.fontSize = 63.999;
    stored.shadowRadius = 31.999999;
    const EditedStyle style(MadeUpFonts::few(), stored);
    EXPECT_EQ(style.editor.fontSizeLabel(), QStringLiteral("63pt"));
    EXPECT_EQ(style.editor.shadowRadiusLabel(), QStringLiteral("31px"));
}

TEST(StyleEditor, numbersBeyondAllSizesAreShownAsTheyAre) {
    SubtitleSettings stored;
    stored.fontSize = 1e20;
    stored.shadowRadius = -0.5;
    const EditedStyle style(MadeUpFonts::few(), stored);
    EXPECT_EQ(style.editor.fontSizeLabel(), QStringLiteral("100000000000000000000pt"));
    EXPECT_EQ(style.editor.shadowRadiusLabel(), QStringLiteral("0px"));
}

TEST(StyleEditor, aColoursOpacityIsDropped) {
    EditedStyle style;
    style.editor.setTextColor(QColor(255, 0, 0, 128));
    EXPECT_EQ(style.settings.textColor(), (Color{1.0, 0.0, 0.0, 1.0}));
    EXPECT_EQ(style.editor.textColor(), QColor(Qt::red));
    style.editor.setShadowColor(QColor(0, 255, 0, 0));
    EXPECT_EQ(style.settings.shadowColor(), (Color{0.0, 1.0, 0.0, 1.0}));
}

TEST(StyleEditor, whatIsNoColourIsStoredAsWhite) {
    EditedStyle style;
    style.editor.setShadowColor(QColor());
    EXPECT_EQ(style.settings.shadowColor(), Color::white());
}

TEST(StyleEditor, aColourThatNoScreenShowsIsNotTouchedByItsOwnEcho) {
    SubtitleSettings stored;
    stored.textColorR = 1.0 / 3.0 + 1e-9;
    stored.textColorG = 1.5;
    EditedStyle style(MadeUpFonts::few(), stored);
    style.editor.setTextColor(style.editor.textColor());
    EXPECT_EQ(style.settings, stored);
    EXPECT_EQ(style.writes, 0);
}

TEST(StyleEditor, turningTheShadowOffKeepsItsColour) {
    EditedStyle style;
    style.editor.setShadowColor(QColor(1, 2, 3));
    style.editor.setHasShadow(false);
    EXPECT_EQ(style.editor.shadowColor(), QColor(1, 2, 3));
    style.editor.setHasShadow(true);
    EXPECT_EQ(style.editor.shadowColor(), QColor(1, 2, 3));
}

TEST(StyleEditor, onThisDesktopThePreviewsFaceIsTheOneThatIsNamed) {
    const SubtitleSettings stored;
    StyleEditor editor([&]() -> const SubtitleSettings& { return stored; }, [](const auto&) {});
    editor.prefetchFonts();
    while (editor.fontFamilies().isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const auto drawn = FontLookup().face(stored.fontPostscriptName);
    const bool isInstalled = drawn.postScriptName == stored.fontPostscriptName;
    const auto name = QString::fromStdString(drawn.family + " " + drawn.style);
    const auto note = QStringLiteral("Helvetica Neue isn’t installed here; %1 takes its place.").arg(name);
    EXPECT_EQ(editor.fontNote(), isInstalled ? QString() : note);
}

}  // namespace
}  // namespace korvane
