#include "tests/app/reel/ShownScreen.h"
#include "ui/player/SubtitleOverlay.h"

namespace korvane {
namespace {

using PreviewOnScreen = ShownScreen;

TEST_F(PreviewOnScreen, theAreaWithThePictureStandsInForThePlaceholder) {
    loadWords();
    EXPECT_TRUE(find("previewPlaceholder"));
    EXPECT_FALSE(find("closePreview"));
    click("preview");
    runUntilIdle();
    EXPECT_FALSE(find("previewPlaceholder"));
    ASSERT_TRUE(find("playerView"));
    EXPECT_NEAR(find("playerView")->width() / find("playerView")->height(), 9.0 / 16.0, 0.003);
    EXPECT_TRUE(players_.consumer);
    const qreal ratio = window_->effectiveDevicePixelRatio();
    EXPECT_EQ(players_.frameSize.first, qRound(find("playerView")->width() * ratio));
    EXPECT_TRUE(view_->subtitleTimer());

    click("closePreview");
    EXPECT_TRUE(find("previewPlaceholder"));
    EXPECT_FALSE(find("playerView"));
    EXPECT_EQ(players_.alive, 0);
    EXPECT_FALSE(view_->subtitleTimer());
}

TEST_F(PreviewOnScreen, theLineThatIsSaidStandsOverThePictureInTheCurrentStyle) {
    loadWords();
    showPreview();
    players_.time = 1.5;
    ASSERT_TRUE(QTest::qWaitFor([&] { return view_->currentSubtitle() == QLatin1String("B"); }));
    const auto* line = dynamic_cast<SubtitleOverlay*>(find("subtitleLine"));
    ASSERT_TRUE(line);
    EXPECT_EQ(line->text(), QStringLiteral("B"));
    EXPECT_EQ(line->reelTexts(), (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    view_->styleEditor()->setFontSize(111);
    view_->styleEditor()->setTextColor(QColor(Qt::yellow));
    view_->styleEditor()->setVerticalPosition(0.25);
    view_->styleEditor()->setHasShadow(false);
    EXPECT_EQ(line->fontSize(), 111);
    EXPECT_EQ(line->textColor(), QColor(Qt::yellow));
    EXPECT_EQ(line->verticalPosition(), 0.25);
    EXPECT_FALSE(line->hasShadow());
    SubtitleSettings other = view_->subtitleSettings();
    other.fontPostscriptName = "LiberationMono";
    other.hasPopAnimation = !other.hasPopAnimation;
    view_->setSubtitleSettings(other);
    EXPECT_EQ(line->fontPostscriptName(), QStringLiteral("LiberationMono"));
    EXPECT_EQ(line->parentItem()->property("hasPopAnimation").toBool(), other.hasPopAnimation);
}

TEST_F(PreviewOnScreen, spacePausesAndPlaysAfterPreviewWasPressedByMouse) {
    loadWords();
    click("preview");
    runUntilIdle();
    ASSERT_GT(view_->previewPlayer()->rate(), 0.0);
    key(Qt::Key_Space);
    EXPECT_EQ(view_->previewPlayer()->rate(), 0.0);
    key(Qt::Key_Space);
    EXPECT_GT(view_->previewPlayer()->rate(), 0.0);
    EXPECT_EQ(players_.made, 1) << "Space pressed the button again";
}

TEST_F(PreviewOnScreen, spaceBelongsToTheControlWithTheFocusThatUsesIt) {
    loadWords();
    showPreview();
    find("closePreview")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Space);
    EXPECT_FALSE(view_->hasPreview()) << "Space pressed the button";
}

TEST_F(PreviewOnScreen, stopComesUpWithoutMovingTheOtherButtons) {
    auto gate = std::make_shared<Gate>();
    script_->build = [gate](const auto& video, const Words& words, const auto& style, const auto& stop) {
        gate->pass(stop);
        return bundleOf(video, words, style);
    };
    loadWords();
    const QRectF preview = placeOf("preview");
    const QRectF exporting = placeOf("export");
    EXPECT_FALSE(find("stop"));
    click("preview");
    ASSERT_TRUE(find("stop"));
    EXPECT_EQ(placeOf("preview"), preview);
    EXPECT_EQ(placeOf("export"), exporting);
    EXPECT_FALSE(placeOf("stop").intersects(preview));
    EXPECT_FALSE(find("preview")->isEnabled());
    click("stop");
    runUntilIdle();
    EXPECT_FALSE(find("stop"));
    EXPECT_EQ(view_->statusText(), QStringLiteral("Cancelled"));
}

TEST_F(PreviewOnScreen, afterAnExportItsFolderCanBeOpened) {
    loadWords();
    EXPECT_FALSE(find("export")->isEnabled());
    showPreview();
    EXPECT_FALSE(find("showInFolder"));
    panels_.answer = folder_.path() / "reel.mp4";
    click("export");
    runUntilIdle();
    EXPECT_EQ(view_->statusText(), QStringLiteral("Export complete"));
    EXPECT_FALSE(find("export")->isEnabled());
    click("showInFolder");
    EXPECT_EQ(log_.back(), "show " + (folder_.path() / "reel.mp4").string());
}

TEST_F(PreviewOnScreen, withoutAChoiceTheHintTellsWhatToDo) {
    loadWords();
    EXPECT_FALSE(find("exportHint"));
    view_->selectNoWords();
    EXPECT_TRUE(find("exportHint"));
    EXPECT_FALSE(find("preview")->isEnabled());
}

}  // namespace
}  // namespace korvane
