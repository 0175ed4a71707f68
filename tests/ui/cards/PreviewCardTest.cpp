#include "ShownCard.h"
#include "tests/ui/player/PlayedPictures.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

class PreviewCard : public testing::Test {
  protected:
    RecordingSource source_;  // outlives the card
    ShownCard shown_{"PreviewCard",
                     {{QStringLiteral("height"), 380},
                      {QStringLiteral("hasPreview"), false},
                      {QStringLiteral("source"), QVariant::fromValue<PreviewSource*>(&source_)},
                      {QStringLiteral("subtitle"), QString()},
                      {QStringLiteral("reelTexts"), QStringList()},
                      {QStringLiteral("fontPostscriptName"), QStringLiteral("Inter-Bold")},
                      {QStringLiteral("fontSize"), 72},
                      {QStringLiteral("textColor"), QColor(Qt::white)},
                      {QStringLiteral("hasShadow"), true},
                      {QStringLiteral("verticalPosition"), 0.85},
                      {QStringLiteral("hasPopAnimation"), true}}};
    QSignalSpy appeared_{shown_.card.get(), SIGNAL(appeared())};
    QSignalSpy disappeared_{shown_.card.get(), SIGNAL(disappeared())};
    QSignalSpy close_{shown_.card.get(), SIGNAL(closeRequested())};
    QSignalSpy toggle_{shown_.card.get(), SIGNAL(toggleRequested())};
    QQuickItem& placeholder_ = shown_.named("previewPlaceholder");
    QQuickItem& closeButton_ = shown_.named("closePreview");
    QQuickItem& picture_ = shown_.named("playerView");

    QQuickItem& icon(const char* name) const { return shown_.with("name", QString::fromLatin1(name)); }
};

TEST_F(PreviewCard, isTitledBesideItsSymbol) {
    QQuickItem& title = shown_.saying("Reel Preview");
    EXPECT_EQ(fontOf(title).pixelSize(), 16);
    QQuickItem& symbol = icon("play.rectangle.fill");
    EXPECT_EQ(symbol.property("size").toDouble(), 14);
    EXPECT_EQ(colorOf(symbol), nameOf(Theme::accent()));
    EXPECT_EQ(shown_.place(title).left() - shown_.place(symbol).right(), 8);
}

TEST_F(PreviewCard, saysWhereAPreviewWillBe) {
    EXPECT_TRUE(placeholder_.isVisible());
    EXPECT_FALSE(picture_.isVisible());
    EXPECT_EQ(placeholder_.property("radius").toDouble(), 10);
    QQuickItem& symbol = icon("play.circle");
    EXPECT_EQ(symbol.property("size").toDouble(), 36);
    EXPECT_EQ(colorOf(symbol), nameOf(Theme::white(0.14)));
    QQuickItem& words = shown_.saying("Preview will appear here");
    EXPECT_EQ(fontOf(words).pixelSize(), 11);
    EXPECT_EQ(colorOf(words), nameOf(Theme::white(0.2)));
    EXPECT_EQ(shown_.place(words).top() - shown_.place(symbol).bottom(), 10);
}

TEST_F(PreviewCard, showsThePictureWhileThereIsOneAndTellsBothChanges) {
    shown_.set("hasPreview", true);
    EXPECT_FALSE(placeholder_.isVisible());
    EXPECT_TRUE(picture_.isVisible());
    EXPECT_EQ(picture_.property("radius").toDouble(), 10);
    EXPECT_EQ(std::pair(appeared_.count(), disappeared_.count()), std::pair(qsizetype{1}, qsizetype{0}));
    shown_.set("hasPreview", false);
    EXPECT_TRUE(placeholder_.isVisible());
    EXPECT_FALSE(picture_.isVisible());
    EXPECT_EQ(std::pair(appeared_.count(), disappeared_.count()), std::pair(qsizetype{1}, qsizetype{1}));
}

TEST_F(PreviewCard, canBeClosedWhileThereIsAPreview) {
    EXPECT_FALSE(closeButton_.isVisible());
    shown_.set("hasPreview", true);
    EXPECT_TRUE(closeButton_.isVisible());
    QQuickItem& symbol = icon("xmark.circle.fill");
    EXPECT_EQ(symbol.property("size").toDouble(), 16);
    EXPECT_EQ(colorOf(symbol), nameOf(Theme::white(0.28)));
    EXPECT_EQ(shown_.place(symbol).right(), 560 - 16);
    shown_.click(closeButton_);
    EXPECT_EQ(close_.count(), 1);
    EXPECT_EQ(toggle_.count(), 0);
}

TEST_F(PreviewCard, itsUprightFrameIsAsLargeAsFits) {
    shown_.set("hasPreview", true);
    for (const auto& [width, height] : {std::pair(560, 380), std::pair(200, 380), std::pair(333, 501)}) {
        shown_.card->setSize(QSizeF(width, height));
        const QRectF frame = shown_.place(picture_);
        EXPECT_NEAR(frame.width(), frame.height() * 9 / 16, 1.0) << width;
        const double inside = width - 2 * 16;
        const double below = shown_.place(shown_.saying("Reel Preview")).bottom() + 10;
        EXPECT_TRUE(std::abs(frame.width() - inside) <= 1 ||
                    std::abs(frame.height() - (height - 14 - below)) <= 1)
            << width;
        EXPECT_NEAR(frame.center().x(), width / 2.0, 1.0) << width;
        EXPECT_GE(frame.top(), below - 1) << width;
        EXPECT_LE(frame.bottom(), height - 14) << width;
        shown_.set("hasPreview", false);
        EXPECT_EQ(shown_.place(placeholder_), frame) << width;
        shown_.set("hasPreview", true);
    }
}

}  // namespace
}  // namespace korvane
