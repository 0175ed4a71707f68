#include "ShownCard.h"

namespace korvane {
namespace {

class HeaderCard : public testing::Test {
  protected:
    ShownCard shown_{
        "HeaderCard",
        {{QStringLiteral("languageNames"),
          QStringList{QStringLiteral("Ukrainian"), QStringLiteral("English (US)"), QStringLiteral("French")}},
         {QStringLiteral("languageIndex"), 0},
         {QStringLiteral("languageEnabled"), true}}};
    QSignalSpy picked_{shown_.card.get(), SIGNAL(languagePicked(int))};
    QQuickItem& picker_ = shown_.named("languagePicker");

    bool isOpen() const { return picker_.property("opened").toBool(); }
};

TEST_F(HeaderCard, saysWhoThisIsAndWhatItDoes) {
    EXPECT_EQ(fontOf(shown_.saying("Korvane")).pixelSize(), 20);
    EXPECT_EQ(fontOf(shown_.saying("Korvane")).weight(), QFont::Bold);
    EXPECT_EQ(fontOf(shown_.saying("Speech Transcription")).pixelSize(), 12);
    EXPECT_GE(shown_.place(shown_.saying("Speech Transcription")).top(),
              shown_.place(shown_.saying("Korvane")).bottom());
    EXPECT_TRUE(shown_.place(*shown_.card).contains(shown_.place(shown_.saying("Speech Transcription"))));
}

TEST_F(HeaderCard, thePickerStandsAtTheRightEdgeAndShowsTheChosenLanguage) {
    EXPECT_EQ(text(picker_), QStringLiteral("Ukrainian"));
    EXPECT_EQ(shown_.place(picker_).right(), 560 - 16);
    shown_.set("languageIndex", 2);
    EXPECT_EQ(text(picker_), QStringLiteral("French"));
    EXPECT_EQ(picked_.count(), 0);
}

TEST_F(HeaderCard, aPickedLanguageIsToldAndShownOnlyOnceItCounts) {
    shown_.click(picker_);
    ASSERT_TRUE(shown_.wait([&] { return isOpen(); }));
    shown_.key(Qt::Key_Down);
    shown_.key(Qt::Key_Return);
    ASSERT_EQ(picked_.count(), 1);
    EXPECT_EQ(picked_.front().front().toInt(), 1);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(picker_), QStringLiteral("Ukrainian"));
    shown_.set("languageIndex", 1);
    EXPECT_EQ(text(picker_), QStringLiteral("English (US)"));
}

TEST_F(HeaderCard, aDisabledPickerIsFaintAndAnswersNobody) {
    shown_.set("languageEnabled", false);
    EXPECT_FALSE(picker_.isEnabled());
    EXPECT_LT(picker_.opacity(), 0.5);
    shown_.click(picker_);
    shown_.focus(picker_);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Down, Qt::Key_F})
        shown_.key(key);
    QCoreApplication::processEvents();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(picked_.count(), 0);
    shown_.set("languageEnabled", true);
    shown_.click(picker_);
    EXPECT_TRUE(shown_.wait([&] { return isOpen(); }));
}

}  // namespace
}  // namespace korvane
