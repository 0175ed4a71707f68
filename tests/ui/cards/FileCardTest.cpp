#include "ShownCard.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

const QString kLongName = QStringLiteral(
    "a very long name of a recording that somebody made on a sunny afternoon by the sea, take 27, final.mp4");

class FileCard : public testing::Test {
  protected:
    ShownCard shown_{"FileCard",
                     {{QStringLiteral("fileName"), QStringLiteral("talk.mp4")},
                      {QStringLiteral("hasVideo"), true},
                      {QStringLiteral("loadEnabled"), true},
                      {QStringLiteral("transcribeEnabled"), true},
                      {QStringLiteral("stopVisible"), false}}};
    QSignalSpy load_{shown_.card.get(), SIGNAL(loadRequested())};
    QSignalSpy transcribe_{shown_.card.get(), SIGNAL(transcribeRequested())};
    QSignalSpy stop_{shown_.card.get(), SIGNAL(stopRequested())};
    QQuickItem& loadButton_ = shown_.named("loadVideo");
    QQuickItem& transcribeButton_ = shown_.named("transcribe");
    QQuickItem& stopButton_ = shown_.named("stopTranscription");
    QQuickItem& name_ = shown_.where(
        [](const QQuickItem& item) { return item.property("elide").toInt() == Qt::ElideMiddle; });

    std::vector<qsizetype> told() const { return {load_.count(), transcribe_.count(), stop_.count()}; }
    /// That all of the name's letters lie where it may be.
    void expectNameUncut(const QQuickItem& neighbour) {
        EXPECT_LE(name_.property("contentWidth").toDouble(), name_.width());
        EXPECT_EQ(name_.property("lineCount").toInt(), 1);
        EXPECT_FALSE(name_.clip());
        EXPECT_LE(shown_.place(name_).right(), shown_.place(neighbour).left() - 8);
        EXPECT_TRUE(shown_.place(*shown_.card).contains(shown_.place(name_)));
    }
};

using Told = std::vector<qsizetype>;

TEST_F(FileCard, showsTheNameOfTheVideoBesideALitSymbol) {
    EXPECT_EQ(text(name_), QStringLiteral("talk.mp4"));
    EXPECT_FALSE(name_.property("truncated").toBool());
    EXPECT_EQ(colorOf(shown_.with("name", QStringLiteral("film"))), nameOf(Theme::accent()));
    EXPECT_EQ(colorOf(name_), nameOf(Theme::white(0.9)));
}

TEST_F(FileCard, withoutAVideoNameAndSymbolAreFaint) {
    shown_.set("hasVideo", false);
    shown_.set("fileName", QStringLiteral("No file selected"));
    EXPECT_EQ(text(name_), QStringLiteral("No file selected"));
    EXPECT_EQ(colorOf(shown_.with("name", QStringLiteral("film"))), nameOf(Theme::white(0.3)));
    EXPECT_EQ(colorOf(name_), nameOf(Theme::white(0.4)));
}

TEST_F(FileCard, namesWithMarksOfMarkupAreShownAsTheyAre) {
    shown_.set("fileName", QStringLiteral("<b>me</b> & you.mp4"));
    EXPECT_EQ(text(name_), QStringLiteral("<b>me</b> & you.mp4"));
    const double plain = name_.property("contentWidth").toDouble();
    shown_.set("fileName", QStringLiteral("me & you.mp4"));
    EXPECT_GT(plain, name_.property("contentWidth").toDouble());
}

TEST_F(FileCard, eachButtonSaysWhatItDoesAndTellsItsOwnSignal) {
    shown_.set("stopVisible", true);
    EXPECT_EQ(text(loadButton_), QStringLiteral("Load Video"));
    EXPECT_EQ(text(transcribeButton_), QStringLiteral("Transcribe"));
    EXPECT_EQ(text(stopButton_), QStringLiteral("Stop"));
    shown_.click(loadButton_);
    EXPECT_EQ(told(), (Told{1, 0, 0}));
    shown_.click(transcribeButton_);
    EXPECT_EQ(told(), (Told{1, 1, 0}));
    shown_.click(stopButton_);
    EXPECT_EQ(told(), (Told{1, 1, 1}));
}

TEST_F(FileCard, buttonsAnswerTheKeyboardToo) {
    shown_.set("stopVisible", true);
    for (QQuickItem* button : {&loadButton_, &transcribeButton_, &stopButton_}) {
        shown_.focus(*button);
        shown_.key(Qt::Key_Space);
    }
    EXPECT_EQ(told(), (Told{1, 1, 1}));
}

TEST_F(FileCard, disabledButtonsTellNobodyWhileStopStillDoes) {
    shown_.set("loadEnabled", false);
    shown_.set("transcribeEnabled", false);
    shown_.set("stopVisible", true);
    EXPECT_FALSE(loadButton_.isEnabled());
    EXPECT_FALSE(transcribeButton_.isEnabled());
    for (QQuickItem* button : {&loadButton_, &transcribeButton_}) {
        shown_.click(*button);
        shown_.focus(*button);
        shown_.key(Qt::Key_Space);
        shown_.key(Qt::Key_Return);
    }
    EXPECT_EQ(told(), (Told{0, 0, 0}));
    shown_.click(stopButton_);
    EXPECT_EQ(told(), (Told{0, 0, 1}));
}

TEST_F(FileCard, eachOfTheTwoIsDisabledByItself) {
    shown_.set("loadEnabled", false);
    EXPECT_FALSE(loadButton_.isEnabled());
    EXPECT_TRUE(transcribeButton_.isEnabled());
    shown_.set("loadEnabled", true);
    shown_.set("transcribeEnabled", false);
    EXPECT_TRUE(loadButton_.isEnabled());
    EXPECT_FALSE(transcribeButton_.isEnabled());
}

TEST_F(FileCard, stopComesAndGoesWithoutMovingTheOtherButtons) {
    const QRectF load = shown_.place(loadButton_);
    const QRectF transcribe = shown_.place(transcribeButton_);
    const qreal height = shown_.card->height();
    EXPECT_FALSE(stopButton_.isVisible());
    EXPECT_EQ(transcribe.right(), 560 - 16);
    shown_.set("stopVisible", true);
    EXPECT_TRUE(stopButton_.isVisible());
    EXPECT_EQ(shown_.place(loadButton_), load);
    EXPECT_EQ(shown_.place(transcribeButton_), transcribe);
    EXPECT_EQ(shown_.card->height(), height);
    EXPECT_EQ(shown_.place(stopButton_).right(), load.left() - 8);
    EXPECT_EQ(shown_.place(stopButton_).top(), load.top());
}

TEST_F(FileCard, aLongNameIsShortenedInItsMiddleAndNeverCut) {
    shown_.set("fileName", kLongName);
    EXPECT_TRUE(name_.property("truncated").toBool());
    expectNameUncut(loadButton_);
    const qreal wide = name_.width();
    shown_.set("stopVisible", true);
    EXPECT_TRUE(name_.property("truncated").toBool());
    EXPECT_LT(name_.width(), wide);
    EXPECT_GT(name_.width(), 40);
    expectNameUncut(stopButton_);
}

TEST_F(FileCard, aNameThatNoLongerFitsIsShortenedWhenTheWindowGetsNarrower) {
    shown_.set("fileName", QStringLiteral("how a long talk becomes a short reel.mp4"));
    EXPECT_FALSE(name_.property("truncated").toBool());
    shown_.set("width", 400);
    EXPECT_TRUE(name_.property("truncated").toBool());
    expectNameUncut(loadButton_);
}

}  // namespace
}  // namespace korvane
