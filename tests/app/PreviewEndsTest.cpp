// How a preview ends when it is stopped, fails or loses its screen, at each of its waits.
#include <stdexcept>

#include "editor/ExportError.h"
#include "platform/ffmpeg/MediaError.h"
#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

enum class Wait { build, ready, seek, preroll };

std::string nameOf(const testing::TestParamInfo<Wait>& info) {
    switch (info.param) {
        case Wait::build:
            return "build";
        case Wait::ready:
            return "ready";
        case Wait::seek:
            return "seek";
        case Wait::preroll:
            return "preroll";
    }
    return {};
}

class PreviewEnds : public Screen, public testing::WithParamInterface<Wait> {
  protected:
    PreviewEnds() {
        loadWords();
        showPreview();
        log_.clear();
        record();
    }

    /// Starts a preview that gets no further than to the wait under test.
    void startAndReach() {
        players_.makesReady = GetParam() != Wait::ready;
        players_.answersSeeks = GetParam() != Wait::seek;
        players_.answersPrerolls = GetParam() != Wait::preroll;
        players_.seekAnswer = nullptr;
        players_.prerollAnswer = nullptr;
        if (GetParam() == Wait::build)
            script_->build = [this, inner = build_](const auto& video, const Words& words, const auto& style,
                                                    const auto& stop) {
                gate_.pass(stop);
                return inner(video, words, style, stop);
            };
        view().startPreview();
        runUntil([this] { return isReached(); });
    }
    bool isReached() {
        switch (GetParam()) {
            case Wait::build:
                return gate_.isReached();
            case Wait::ready:
                return view().hasPreview();
            case Wait::seek:
                return players_.seekAnswer != nullptr;
            case Wait::preroll:
                return players_.prerollAnswer != nullptr;
        }
        return false;
    }
    /// What the wait was for comes after all.
    void answer() {
        gate_.open();
        if (view_ && view().previewBundle())
            view().previewBundle()->previewPlayerItem()->becomeReady();
        for (const auto& late : {players_.seekAnswer, players_.prerollAnswer})
            if (late)
                late(true);
    }
    void restoreScript() {
        gate_.open();
        script_->build = build_;
        players_.makesReady = players_.answersSeeks = players_.answersPrerolls = true;
    }
    bool hasPlayer() const { return GetParam() != Wait::build; }

    const decltype(Script::build) build_ = script_->build;
    Gate gate_;
};

INSTANTIATE_TEST_SUITE_P(At, PreviewEnds,
                         testing::Values(Wait::build, Wait::ready, Wait::seek, Wait::preroll), nameOf);

TEST_P(PreviewEnds, aStopIsCancelledWithoutAnErrorCard) {
    startAndReach();
    view().stopPreviewOrExport();
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_FALSE(view().hasError());
    EXPECT_EQ(view().overallProgress(), 0.0);
    EXPECT_FALSE(view().buildPreviewTask().has_value());
    EXPECT_EQ(Lines(log_.end() - 2, log_.end()), (Lines{"status Cancelled", "building false"}));
}

TEST_P(PreviewEnds, aStopLeavesNoPreviewOrOneThatWasNotStarted) {
    startAndReach();
    view().stopPreviewOrExport();
    runUntilIdle();
    EXPECT_EQ(view().hasPreview(), hasPlayer());
    EXPECT_EQ(view().canExport(), hasPlayer());
    EXPECT_EQ(players_.alive, hasPlayer() ? 1 : 0);
    if (hasPlayer()) {
        EXPECT_EQ(view().previewPlayer()->rate(), 0.0);
    }
    log_.clear();
    answer();
    QCoreApplication::processEvents();
    EXPECT_EQ(std::ranges::count(log_, "play"), 0);
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
}

TEST_P(PreviewEnds, aStopOnlyRequestsAndSetsNoStatusItself) {
    startAndReach();
    log_.clear();
    view().stopBuildPreview();
    EXPECT_FALSE(view().buildPreviewTask().has_value());
    EXPECT_TRUE(view().isBuildingPreview());
    view().stopBuildPreview();
    view().startPreview();  // refused: the first one is still unwinding
    EXPECT_EQ(log_, Lines{});
    runUntilIdle();
    EXPECT_EQ(log_, (Lines{"status Cancelled", "building false"}));
}

TEST_P(PreviewEnds, anAnswerThatComesBetweenStopAndEndChangesNothing) {
    startAndReach();
    view().stopBuildPreview();
    answer();
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_EQ(std::ranges::count(log_, "play"), 0);
    EXPECT_EQ(view().hasPreview(), hasPlayer());
}

TEST_P(PreviewEnds, afterAStopTheNextOneRunsThrough) {
    startAndReach();
    view().stopBuildPreview();
    runUntilIdle();
    restoreScript();
    showPreview();
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
    EXPECT_EQ(view().previewPlayer()->rate(), 1.0);
    EXPECT_EQ(players_.alive, 1);
}

TEST_P(PreviewEnds, whatRunsIsStoppedWithoutAQuestionOnceAgreed) {
    EXPECT_FALSE(view().closeQuestionNeeded());
    startAndReach();
    EXPECT_TRUE(view().closeQuestionNeeded());
    view().cancelEverything();
    EXPECT_FALSE(view().closeQuestionNeeded());
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    startAndReach();
    EXPECT_TRUE(view().closeQuestionNeeded());
}

TEST_P(PreviewEnds, aScreenThatGoesStopsAndTellsNobody) {
    startAndReach();
    log_.clear();
    view_.reset();
    EXPECT_EQ(log_, Lines{});
    EXPECT_EQ(players_.alive, 0);
    answer();
    QCoreApplication::processEvents();
    EXPECT_EQ(log_, Lines{});
}

TEST_P(PreviewEnds, aScreenThatGoesAfterAStopUnwindsToo) {
    startAndReach();
    view().stopBuildPreview();
    view_.reset();
    EXPECT_EQ(players_.alive, 0);
    QCoreApplication::processEvents();
}

class PreviewFails : public Screen {
  protected:
    PreviewFails() {
        loadWords();
        showPreview();
        log_.clear();
        record();
    }
    void expectFailure(const std::string& message) {
        log_.clear();
        showPreview();
        ASSERT_GE(log_.size(), 3u);
        EXPECT_EQ(Lines(log_.end() - 3, log_.end()),
                  (Lines{"status Preview failed", "error " + message, "building false"}));
        EXPECT_FALSE(view().hasPreview());
        EXPECT_FALSE(view().previewBundle().has_value());
        EXPECT_FALSE(view().buildPreviewTask().has_value());
        EXPECT_EQ(view().overallProgress(), 0.0);
        EXPECT_EQ(players_.alive, 0);
    }
    template <class Error>
    void failWith(const Error& error) {
        script_->build = [error](const auto&, const auto&, const auto&, const auto&) -> ExportBundle {
            throw error;
        };
    }
};

TEST_F(PreviewFails, inTheWordsOfTheService) {
    for (const ExportError& error : {ExportError::noVideoTrack(), ExportError::compositionFailed(),
                                     ExportError::noContentInserted(), ExportError::noSegmentsSelected()}) {
        failWith(error);
        expectFailure(error.what());
    }
}

TEST_F(PreviewFails, inTheWordsOfThePlatform) {
    failWith(MediaError("Could not open “clip.mp4”: No such file or directory."));
    expectFailure("Could not open “clip.mp4”: No such file or directory.");
}

TEST_F(PreviewFails, alsoWithWhatHasNoWords) {
    failWith(42);
    expectFailure("unknown error");
}

TEST_F(PreviewFails, whenThePlayerCannotBeMade) {
    view_ = makeView(defaults_, [](const auto&) -> std::shared_ptr<PreviewPlayer> {
        throw std::runtime_error("Resource temporarily unavailable");
    });
    loadWords();
    record();
    expectFailure("Resource temporarily unavailable");
}

TEST_F(PreviewFails, theNextStartClearsTheErrorCard) {
    const auto build = script_->build;
    failWith(ExportError::noVideoTrack());
    showPreview();
    EXPECT_TRUE(view().hasError());
    script_->build = build;
    showPreview();
    EXPECT_FALSE(view().hasError());
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
}

TEST_F(PreviewFails, aBundleThatCameInSpiteOfTheStopIsNotShown) {
    Gate gate;
    script_->build = [&gate](const auto& video, const Words& words, const auto& style, const auto&) {
        gate.passDeaf();
        return bundleOf(video, words, style);
    };
    view().startPreview();
    runUntil([&] { return gate.isReached(); });
    view().stopBuildPreview();
    gate.open();
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_FALSE(view().previewBundle().has_value());
    EXPECT_EQ(players_.alive, 0);
}

}  // namespace
}  // namespace korvane
