// The line over the preview: which one, and when somebody looks for it.
#include "app/LiveSubtitle.h"

#include <limits>

#include "tests/app/LineTimers.h"
#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

const std::vector<SubtitleEntry> kTwoLines{{0.0, 1.2, "A"}, {1.2, 2.0, "B"}};

TEST(SubtitleAt, aLineBeginsAtItsStartAndIsOverAtItsEnd) {
    EXPECT_EQ(subtitleAt(kTwoLines, 0.0), "A");
    EXPECT_EQ(subtitleAt(kTwoLines, 1.19), "A");
    EXPECT_EQ(subtitleAt(kTwoLines, 1.2), "B");
    EXPECT_EQ(subtitleAt(kTwoLines, std::nextafter(2.0, 0.0)), "B");
    EXPECT_EQ(subtitleAt(kTwoLines, 2.0), "");
    EXPECT_EQ(subtitleAt(kTwoLines, -0.001), "");
    EXPECT_EQ(subtitleAt({}, 1.0), "");
}

TEST(SubtitleAt, ofTwoLinesAtOnceTheFirstInTheListWins) {
    const std::vector<SubtitleEntry> overlapping{{1.0, 3.0, "later"}, {0.0, 2.0, "earlier"}};
    EXPECT_EQ(subtitleAt(overlapping, 1.5), "later");
    EXPECT_EQ(subtitleAt(overlapping, 0.5), "earlier");
}

TEST(SubtitleAt, betweenTwoLinesThereIsNone) {
    EXPECT_EQ(subtitleAt({{0.0, 1.0, "A"}, {1.5, 2.0, "B"}}, 1.2), "");
}

TEST(SubtitleAt, aLineOfNoLengthIsNeverShown) {
    EXPECT_EQ(subtitleAt({{1.0, 1.0, "A"}}, 1.0), "");
}

TEST(SubtitleAt, aTimeThatIsNoNumberMatchesNothing) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<SubtitleEntry> always{{-infinity, infinity, "A"}};
    EXPECT_EQ(subtitleAt(always, std::numeric_limits<double>::quiet_NaN()), "");
    EXPECT_EQ(subtitleAt(always, infinity), "");
}

class LiveSubtitle : public Screen {
  protected:
    LiveSubtitle() {
        loadWords();
        showPreview();
    }
    std::string shown() const { return view_->currentSubtitle().toStdString(); }
    void expectNobodyLooks() {
        EXPECT_EQ(view().subtitleTimer(), nullptr);
        EXPECT_EQ(shown(), "");
    }
};

TEST_F(LiveSubtitle, isLookedForTwentyTimesASecondOnceTheAreaAppears) {
    players_.time = 0.5;
    expectNobodyLooks();
    view().previewAppeared();
    ASSERT_NE(view().subtitleTimer(), nullptr);
    EXPECT_EQ(view().subtitleTimer()->interval(), 50);
    EXPECT_FALSE(view().subtitleTimer()->isSingleShot());
    EXPECT_EQ(shown(), "");  // only with the first look
    runUntil([this] { return shown() == "A"; });
    players_.time = 1.2;
    runUntil([this] { return shown() == "B"; });
    players_.time = 2.0;
    runUntil([this] { return shown().empty(); });
}

TEST_F(LiveSubtitle, goesWhileThePlayerCannotTellTheTime) {
    players_.time = 0.5;
    view().previewAppeared();
    runUntil([this] { return shown() == "A"; });
    players_.time = std::numeric_limits<double>::quiet_NaN();
    runUntil([this] { return shown().empty(); });
}

TEST_F(LiveSubtitle, isNotLookedForWithoutAPreview) {
    view().closePreview();
    view().previewAppeared();
    expectNobodyLooks();
}

TEST_F(LiveSubtitle, isNotLookedForOnceTheAreaHasGone) {
    view().previewAppeared();
    view().previewDisappeared();
    EXPECT_EQ(view().subtitleTimer(), nullptr);
    EXPECT_NE(view().previewPlayer(), nullptr);
}

TEST_F(LiveSubtitle, whatIsNotSeenIsNotHeard) {
    ASSERT_EQ(view().previewPlayer()->rate(), 1.0);
    view().openDroppedFile(
        QUrl::fromLocalFile(QString::fromStdString(folder_.file("other.mp4", "x").string())));
    ASSERT_FALSE(view().hasPreview());
    EXPECT_NE(view().previewPlayer(), nullptr);
    view().previewDisappeared();
    EXPECT_EQ(view().previewPlayer()->rate(), 0.0);
}

TEST_F(LiveSubtitle, closingClearsItAtOnceAndStopsLooking) {
    players_.time = 0.5;
    view().previewAppeared();
    runUntil([this] { return shown() == "A"; });
    view().closePreview();
    expectNobodyLooks();
}

TEST_F(LiveSubtitle, aSecondPreviewReplacesTheFirstWithoutASecondTimer) {
    players_.time = 0.5;
    view().previewAppeared();
    runUntil([this] { return shown() == "A"; });
    view().startPreview();
    expectNobodyLooks();
    runUntilIdle();
    view().previewAppeared();
    view().previewAppeared();
    const LineTimers timers;
    runUntil([&] { return timers.ticks >= 4; });
    EXPECT_EQ(timers.seen.size(), 1u);
    EXPECT_EQ(players_.alive, 1);
}

TEST_F(LiveSubtitle, lookingEndsWithTheScreen) {
    view().previewAppeared();
    view_.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(players_.alive, 0);
}

}  // namespace
}  // namespace korvane
