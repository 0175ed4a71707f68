// What the screen derives from its state, each row of each table.
#include "tests/app/ScreenFixture.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

using DerivedValues = Screen;
using namespace std::chrono_literals;

TEST_F(DerivedValues, somethingIsActiveWhileAnyOfTheThreeOperationsRuns) {
    EXPECT_FALSE(view().isAnyActive());
    peer().setProcessing(true);
    EXPECT_TRUE(view().isAnyActive());
    peer().setProcessing(false);
    peer().setBuildingPreview(true);
    EXPECT_TRUE(view().isAnyActive());
    peer().setBuildingPreview(false);
    peer().setExporting(true);
    EXPECT_TRUE(view().isAnyActive());
    peer().setExporting(false);
    EXPECT_FALSE(view().isAnyActive());
}

TEST_F(DerivedValues, transcribingNeedsAVideoAndAnIdleScreen) {
    EXPECT_FALSE(view().canTranscribe());
    loadVideo();
    EXPECT_TRUE(view().canTranscribe());
    peer().setExporting(true);
    EXPECT_FALSE(view().canTranscribe());
}

TEST_F(DerivedValues, thereIsNoEstimateWhileIdleOrWithoutAStartOrInTheFirstTwentieth) {
    peer().setProgress(0.5);
    peer().setStart(now_ - 42700ms);
    EXPECT_EQ(view().etaText(), std::nullopt);
    peer().setProcessing(true);
    EXPECT_EQ(view().etaText(), "~42s left");
    EXPECT_EQ(view().etaLabel().toStdString(), "~42s left");
    peer().setProgress(0.05);
    EXPECT_EQ(view().etaText(), std::nullopt);
    EXPECT_EQ(view().etaLabel().toStdString(), "");
    peer().setProgress(0.5);
    peer().setStart(std::nullopt);
    EXPECT_EQ(view().etaText(), std::nullopt);
}

TEST_F(DerivedValues, theEstimateFollowsTheClock) {
    peer().setExporting(true);
    peer().setProgress(0.5);
    peer().setStart(now_);
    EXPECT_EQ(view().etaText(), "Almost done…");
    now_ += 59900ms;
    EXPECT_EQ(view().etaText(), "~59s left");
    now_ += 127100ms;
    EXPECT_EQ(view().etaText(), "~3m 7s left");
}

TEST_F(DerivedValues, thePhaseIsThatOfTheFirstOperationInItsOrder) {
    EXPECT_EQ(view().phaseLabel().toStdString(), "Extracting audio");
    peer().setProgress(0.2999);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Extracting audio");
    peer().setProgress(0.3);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Transcribing");
    peer().setBuildingPreview(true);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Building preview");
    peer().setExporting(true);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Exporting video");
}

TEST_F(DerivedValues, thePhaseIsShownOnlyBetweenBeginningAndEnd) {
    EXPECT_EQ(view().phaseText().toStdString(), "");
    peer().setProgress(0.01);
    EXPECT_EQ(view().phaseText().toStdString(), "Extracting audio");
    peer().setProgress(0.99);
    EXPECT_EQ(view().phaseText().toStdString(), "Transcribing");
    peer().setProgress(1.0);
    EXPECT_EQ(view().phaseText().toStdString(), "");
    EXPECT_EQ(view().phaseLabel().toStdString(), "Transcribing");
}

TEST_F(DerivedValues, theBarShowsAStubOnceSomethingBegan) {
    EXPECT_EQ(view().barWidth(300), 0);
    peer().setProgress(0.01);
    EXPECT_EQ(view().barWidth(300), 10);
    peer().setProgress(0.5);
    EXPECT_EQ(view().barWidth(300), 150);
    peer().setProgress(1.0);
    EXPECT_EQ(view().barWidth(300), 300);
    peer().setProgress(-0.1);
    EXPECT_EQ(view().barWidth(300), 0);
}

TEST_F(DerivedValues, theDotTellsHowItStands) {
    EXPECT_EQ(view().dotColor(), Theme::white(0.25));
    peer().setProgress(0.4);
    EXPECT_EQ(view().dotColor(), Theme::orange());
    peer().setProgress(1.0);
    EXPECT_EQ(view().dotColor(), Theme::successGreen());
    peer().setBuildingPreview(true);
    EXPECT_EQ(view().dotColor(), Theme::accent());
    peer().setProgress(0.0);
    EXPECT_EQ(view().dotColor(), Theme::accent());
}

TEST_F(DerivedValues, theEmptyWordListSaysWhatToDoNext) {
    EXPECT_EQ(view().emptyStateText().toStdString(), "Load a video to get started.");
    peer().setProcessing(true);
    EXPECT_EQ(view().emptyStateText().toStdString(), "Load a video to get started.");
    loadVideo();
    EXPECT_EQ(view().emptyStateText().toStdString(), "Transcribing…");
    peer().setProcessing(false);
    EXPECT_EQ(view().emptyStateText().toStdString(), "Press Transcribe to start.");
}

TEST_F(DerivedValues, thePercentageIsTheWholePartOfTheProgress) {
    EXPECT_EQ(view().percentText().toStdString(), "0%");
    peer().setProgress(0.429);
    EXPECT_EQ(view().percentText().toStdString(), "42%");
}

/// Counts how often a signal came while something was done.
template <class Signal, class Action>
int heard(ContentView& view, Signal signal, Action action) {
    int count = 0;
    QObject scope;
    QObject::connect(&view, signal, &scope, [&count] { ++count; });
    action();
    return count;
}

TEST_F(DerivedValues, eachInputOfADerivedValueAnnouncesIt) {
    ContentView& v = view();
    ContentViewPeer p = peer();
    EXPECT_GT(heard(v, &ContentView::canTranscribeChanged, [&] { loadVideo(); }), 0);
    EXPECT_GT(heard(v, &ContentView::emptyStateTextChanged, [&] { p.dropURL(); }), 0);
    EXPECT_GT(heard(v, &ContentView::progressTextsChanged, [&] { p.setProgress(0.2); }), 0);
    EXPECT_GT(heard(v, &ContentView::progressTextsChanged, [&] { p.setStart(now_); }), 0);
    for (const bool on : {true, false})
        EXPECT_GT(heard(v, &ContentView::emptyStateTextChanged, [&] { p.setProcessing(on); }), 0);
    for (const auto& set : {&ContentViewPeer::setProcessing, &ContentViewPeer::setBuildingPreview,
                            &ContentViewPeer::setExporting}) {
        for (const auto& announced : {&ContentView::isAnyActiveChanged, &ContentView::canTranscribeChanged,
                                      &ContentView::progressTextsChanged}) {
            for (const bool on : {true, false})
                EXPECT_EQ(heard(v, announced, [&] { (p.*set)(on); }), 1);
        }
    }
}

TEST_F(DerivedValues, settingWhatIsAlreadySoAnnouncesNothing) {
    loadVideo();
    record();
    loadVideo();
    peer().setProcessing(false);
    peer().setBuildingPreview(false);
    peer().setExporting(false);
    peer().setProgress(0.0);
    peer().setStart(std::nullopt);
    peer().setStatus(QStringLiteral("Ready"));
    peer().dropError();
    peer().dropBundle();
    peer().setWords({});
    peer().setSelected({});
    EXPECT_EQ(log_, std::vector<std::string>{});
}

}  // namespace
}  // namespace korvane
