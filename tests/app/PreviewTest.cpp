// The preview when nobody disturbs it: order of changes, what it asks for, the loop, closing, the pictures.
#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

class Preview : public Screen {
  protected:
    /// What every preview announces at its start, from a screen with an old one.
    const Lines begun_{"pause",      "player none", "bundle none", "building true",
                       "progress 0", "error none",  "start",       "status Building preview…"};
    const Lines playerMade_{"at end none", "observe end", "bundle some", "player some"};
    const Lines shown_{"preroll 1.0", "play", "progress 1", "status Ready", "building false"};

    static Lines joined(std::initializer_list<Lines> parts) {
        Lines all;
        for (const Lines& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }
    void showOldPreview() {
        loadWords();
        showPreview();
        now_ += std::chrono::minutes(1);
        peer().setError("old");
        log_.clear();
        record();
    }
    void buildWithPreroll(MediaTime preroll) {
        script_->build = [preroll](const auto& video, const Words& words, const auto& style, const auto&) {
            return bundleOf(video, words, style, preroll);
        };
    }
};

TEST_F(Preview, withoutAVideoNothingHappens) {
    record();
    view().startPreview();
    EXPECT_EQ(log_, Lines{});
    EXPECT_FALSE(view().buildPreviewTask().has_value());
}

TEST_F(Preview, withoutAWordOnlySetsTheErrorMessage) {
    loadWords();
    view().selectNoWords();
    peer().setBundle(someBundle());
    record();
    view().startPreview();
    EXPECT_EQ(log_, Lines{"error Select at least one word before previewing."});
    EXPECT_FALSE(view().isBuildingPreview());
    EXPECT_FALSE(view().buildPreviewTask().has_value());
    EXPECT_TRUE(view().previewBundle().has_value());
}

TEST_F(Preview, changesTheStateInOrder) {
    showOldPreview();
    showPreview();
    EXPECT_EQ(log_, joined({begun_, playerMade_, {"seek 150/600 within 0/600 and 0/600"}, shown_}));
    EXPECT_TRUE(view().hasPreview());
    EXPECT_EQ(view().previewPlayer()->rate(), 1.0);
}

TEST_F(Preview, everythingBeforeTheBuildHappensAtOnce) {
    showOldPreview();
    view().startPreview();
    EXPECT_EQ(log_, begun_);
    EXPECT_TRUE(view().buildPreviewTask().has_value());
    EXPECT_EQ(view().processingStartTime(), now_);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Building preview");
    EXPECT_TRUE(view().stopVisible());
    EXPECT_FALSE(view().canPreview());
    EXPECT_FALSE(view().canExport());
    runUntilIdle();
    EXPECT_FALSE(view().buildPreviewTask().has_value());
    EXPECT_FALSE(view().stopVisible());
    EXPECT_TRUE(view().canPreview());
    EXPECT_TRUE(view().canExport());
}

TEST_F(Preview, withoutALeadInItIsNotSought) {
    loadWords();
    buildWithPreroll(kZeroTime);
    record();
    showPreview();
    EXPECT_EQ(log_, joined({{"building true", "start", "status Building preview…"}, playerMade_, shown_}));
}

TEST_F(Preview, asksForTheChosenWordsInTheStyleOfNow) {
    loadWords();
    view().toggleWord(1);
    SubtitleSettings style;
    style.fontSize = 90.0;
    view().setSubtitleSettings(style);
    std::filesystem::path video;
    Words asked;
    script_->build = [&](const auto& from, const Words& words, const auto& settings, const auto&) {
        video = from;
        asked = words;
        return bundleOf(from, words, settings);
    };
    view().startPreview();
    view().setSubtitleSettings({});
    runUntilIdle();
    EXPECT_EQ(video, *view().selectedURL());
    EXPECT_EQ(textsOf(asked), (Lines{"one", "three"}));
    EXPECT_EQ(view().previewBundle()->subtitleSettings(), style);
}

TEST_F(Preview, waitsUntilTheItemHasDecided) {
    loadWords();
    players_.makesReady = false;
    view().startPreview();
    runUntil([this] { return view().hasPreview(); });
    log_.clear();
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(log_, Lines{});
    EXPECT_TRUE(view().isBuildingPreview());
    view().previewBundle()->previewPlayerItem()->becomeReady();
    runUntilIdle();
    EXPECT_EQ(view().previewPlayer()->rate(), 1.0);
}

TEST_F(Preview, anItemThatCannotBePlayedIsNoError) {
    loadWords();
    players_.makesReady = false;
    players_.finishes = false;
    view().startPreview();
    runUntil([this] { return view().hasPreview(); });
    view().previewBundle()->previewPlayerItem()->fail(nullptr);
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
    EXPECT_FALSE(view().hasError());
    EXPECT_EQ(view().overallProgress(), 1.0);
}

TEST_F(Preview, anItemThatBreaksLaterGoesOnOnce) {
    loadWords();
    players_.answersSeeks = false;
    view().startPreview();
    runUntil([this] { return players_.seekAnswer != nullptr; });
    view().previewBundle()->previewPlayerItem()->fail(nullptr);
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    EXPECT_TRUE(view().isBuildingPreview());
    players_.seekAnswer(false);
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
}

TEST_F(Preview, eachWaitGoesOnOnce) {
    loadWords();
    players_.answersSeeks = false;
    players_.answersPrerolls = false;
    view().startPreview();
    runUntil([this] { return players_.seekAnswer != nullptr; });
    const auto sought = players_.seekAnswer;
    sought(true);
    ASSERT_NE(players_.prerollAnswer, nullptr);
    sought(true);
    EXPECT_TRUE(view().isBuildingPreview());
    const auto prerolled = players_.prerollAnswer;
    prerolled(true);
    EXPECT_FALSE(view().isBuildingPreview());
    log_.clear();
    prerolled(true);
    sought(true);
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Preview, atTheEndItGoesBackToTheLoopPointAndPlaysOn) {
    loadWords();
    showPreview();
    log_.clear();
    players_.reachEnd();
    EXPECT_EQ(log_, (Lines{"seek 150/600", "play"}));
    players_.reachEnd();
    EXPECT_EQ(log_.size(), 4u);
}

TEST_F(Preview, thePlayerKnowsBeforehandWhereItWillGoBackTo) {
    loadWords();
    showPreview();
    EXPECT_EQ(players_.loopHint, MediaTime(150, 600));
    buildWithPreroll(kZeroTime);
    showPreview();
    EXPECT_EQ(players_.loopHint, kZeroTime);
}

TEST_F(Preview, withoutALeadInItLoopsFromTheBeginning) {
    loadWords();
    buildWithPreroll(kZeroTime);
    showPreview();
    log_.clear();
    players_.reachEnd();
    EXPECT_EQ(log_, (Lines{"seek 0/600", "play"}));
}

TEST_F(Preview, pausedOnTheWayBackItStaysPaused) {
    loadWords();
    showPreview();
    players_.answersSeeks = false;
    players_.reachEnd();
    view().togglePlayback();
    log_.clear();
    players_.seekAnswer(true);
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Preview, closingPausesThenTakesThePlayerAway) {
    loadWords();
    showPreview();
    log_.clear();
    record();
    view().closePreview();
    EXPECT_EQ(log_, (Lines{"pause", "player none", "bundle none"}));
    EXPECT_EQ(players_.alive, 0);
    EXPECT_FALSE(view().hasPreview());
    EXPECT_FALSE(view().canExport());
    view().closePreview();
    EXPECT_EQ(log_.size(), 3u);
}

TEST_F(Preview, theEndOfAClosedPreviewMovesNothing) {
    loadWords();
    showPreview();
    const auto observers = players_.atEnd;
    players_.answersSeeks = false;
    players_.reachEnd();
    view().closePreview();
    log_.clear();
    players_.seekAnswer(true);
    for (const auto& observer : observers)
        observer();
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Preview, closedWhileItIsMadeReadyItIsNeverHeard) {
    loadWords();
    players_.answersPrerolls = false;
    view().startPreview();
    runUntil([this] { return players_.prerollAnswer != nullptr; });
    view().closePreview();
    log_.clear();
    players_.prerollAnswer(true);
    EXPECT_EQ(log_, Lines{});
    EXPECT_FALSE(view().isAnyActive());
    EXPECT_FALSE(view().hasPreview());
    EXPECT_EQ(players_.alive, 0);
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
}

TEST_F(Preview, spacePausesAndPlaysWhatIsShown) {
    loadWords();
    view().togglePlayback();
    showPreview();
    log_.clear();
    view().togglePlayback();
    view().togglePlayback();
    EXPECT_EQ(log_, (Lines{"pause", "play"}));
    view().closePreview();
    log_.clear();
    view().togglePlayback();
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Preview, spaceDoesNothingWhileItIsMadeReady) {
    loadWords();
    players_.answersSeeks = false;
    view().startPreview();
    runUntil([this] { return players_.seekAnswer != nullptr; });
    log_.clear();
    view().togglePlayback();
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Preview, twoHundredInARowLeaveOnePlayerAndOneTimer) {
    loadWords();
    for (int i = 0; i < 200; ++i) {
        showPreview();
        view().previewAppeared();
        ASSERT_EQ(players_.alive, 1);
    }
    EXPECT_EQ(players_.made, 200);
    EXPECT_EQ(players_.goneWhilePlaying, 0);
    EXPECT_EQ(players_.atEnd.size(), 1u);
    view().closePreview();
    EXPECT_EQ(players_.alive, 0);
    EXPECT_EQ(view().subtitleTimer(), nullptr);
}

TEST_F(Preview, theNewPlayersItemIsTheBundles) {
    loadWords();
    showPreview();
    const std::weak_ptr<PlayerItem> first = view().previewBundle()->previewPlayerItem();
    showPreview();
    EXPECT_TRUE(first.expired());
}

TEST_F(Preview, picturesComeFromThePlayerOfNow) {
    struct Nobody final : FrameConsumer {
        void show(const PlayerFrame&) override {}
    };
    const auto consumer = std::make_shared<Nobody>();
    PreviewSource& source = *view().previewSource();
    source.setFrameConsumer(consumer);  // without a player it is not kept
    source.setFrameSize(1, 1);
    loadWords();
    showPreview();
    EXPECT_EQ(players_.consumer, nullptr);
    source.setFrameConsumer(consumer);
    source.setFrameSize(270, 480);
    EXPECT_EQ(players_.consumer, consumer);
    EXPECT_EQ(players_.frameSize, std::pair(270, 480));
    EXPECT_EQ(&source, view().previewSource());
}

TEST_F(Preview, anotherVideoTakesTheBundleAndLeavesThePlayer) {
    loadWords();
    showPreview();
    panels_.answer = folder_.file("other.mp4", "x");
    view().openFilePicker();
    EXPECT_FALSE(view().previewBundle().has_value());
    EXPECT_NE(view().previewPlayer(), nullptr);
    EXPECT_FALSE(view().hasPreview());
    EXPECT_FALSE(view().canExport());
}

TEST_F(Preview, itsSignalsTellWhatCanBeDone) {
    loadWords();
    Lines told;
    ContentView* v = view_.get();
    QObject::connect(v, &ContentView::canPreviewChanged, v,
                     [&] { told.push_back("preview " + textOf(v->canPreview())); });
    QObject::connect(v, &ContentView::canExportChanged, v,
                     [&] { told.push_back("export " + textOf(v->canExport())); });
    QObject::connect(v, &ContentView::hasPreviewChanged, v,
                     [&] { told.push_back("has " + textOf(v->hasPreview())); });
    view().selectNoWords();
    view().selectAllWords();
    EXPECT_EQ(told, (Lines{"preview false", "preview true"}));
    told.clear();
    showPreview();
    ASSERT_GE(told.size(), 3u);
    EXPECT_EQ(told.front(), "preview false");
    EXPECT_NE(std::ranges::find(told, "has true"), told.end());
    EXPECT_EQ(told.back(), "export true");
}

}  // namespace
}  // namespace korvane
