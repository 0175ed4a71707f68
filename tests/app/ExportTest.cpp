// From the previewed reel to a file: the panel, the order of changes, every end.
#include <stdexcept>

#include "editor/ExportError.h"
#include "tests/app/ScreenFixture.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

class Export : public Screen {
  protected:
    Export() {
        loadWords();
        showPreview();
        now_ += std::chrono::minutes(1);
        panels_.answer = reel_;
        log_.clear();
        record();
    }
    void exportAll() {
        view().exportReel();
        runUntilIdle();
    }
    /// Keeps the export standing until it is stopped or `gate_` opens.
    void holdExport() {
        script_->write = [this](const auto&, const auto&, const auto&, const auto&,
                                const OnProgress& onProgress, const std::stop_token& stop) {
            onProgress(0.25);
            gate_.pass(stop);
        };
    }
    void startAndReach() {
        holdExport();
        view().exportReel();
        runUntil([this] { return gate_.isReached() && view().overallProgress() == 0.25; });
    }
    template <class Error>
    void failWith(const Error& error) {
        script_->write = [error](const auto&, const auto&, const auto&, const auto&,
                                 const OnProgress& onProgress, const auto&) {
            onProgress(0.5);
            throw error;
        };
    }
    Lines lastLines(std::ptrdiff_t count) const {
        return {log_.end() - std::min(count, std::ssize(log_)), log_.end()};
    }

    const std::filesystem::path reel_ = folder_.path() / "my reel.mp4";
    Gate gate_;
    /// What every export announces at its start, behind a preview that played.
    const Lines begun_{"pause",
                       "player none",
                       "bundle none",
                       "exporting true",
                       "progress 0",
                       "start",
                       "status Preparing export…"};
};

TEST_F(Export, withoutAPreviewNothingHappens) {
    view().closePreview();
    log_.clear();
    EXPECT_FALSE(view().canExport());
    view().exportReel();
    EXPECT_TRUE(panels_.saveRequests.empty());
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Export, asksForTheFileInItsOwnWords) {
    exportAll();
    ASSERT_EQ(panels_.saveRequests.size(), 1u);
    EXPECT_EQ(panels_.saveRequests[0],
              (SavePanelRequest{.title = "Export Video",
                                .allowedTypes = {{"video/mp4", "mp4", "MPEG-4 movie"}},
                                .proposedName = "korvane_output.mp4",
                                .canCreateFolders = true}));
}

TEST_F(Export, aCancelledPanelLeavesEverything) {
    panels_.answer.reset();
    view().exportReel();
    EXPECT_EQ(log_, Lines{});
    EXPECT_TRUE(view().hasPreview());
    EXPECT_TRUE(view().canExport());
    EXPECT_EQ(view().previewPlayer()->rate(), 1.0);
    EXPECT_FALSE(view().exportTask().has_value());
}

TEST_F(Export, changesTheStateInOrder) {
    peer().setError("old");
    log_.clear();
    exportAll();
    EXPECT_EQ(log_, (Lines{"pause", "player none", "bundle none", "exporting true", "progress 0",
                           "error none", "start", "status Preparing export…", "progress 1",
                           "status Export complete", "exported my reel.mp4", "exporting false"}));
    EXPECT_EQ(players_.alive, 0);
    EXPECT_FALSE(view().exportTask().has_value());
    EXPECT_FALSE(view().canExport());
    EXPECT_TRUE(view().canPreview());
    EXPECT_EQ(view().dotColor(), Theme::successGreen());
    EXPECT_EQ(contentOf(reel_), "reel");
}

TEST_F(Export, everythingBeforeTheWaitHappensAtOnce) {
    holdExport();
    view().exportReel();
    EXPECT_EQ(log_, begun_);
    EXPECT_TRUE(view().exportTask().has_value());
    EXPECT_EQ(view().processingStartTime(), now_);
    EXPECT_EQ(view().phaseLabel().toStdString(), "Exporting video");
    EXPECT_TRUE(view().stopVisible());
    EXPECT_FALSE(view().canPreview());
    view().stopExport();
    runUntilIdle();
    EXPECT_FALSE(view().stopVisible());
}

TEST_F(Export, writesExactlyWhatWasPreviewed) {
    SubtitleSettings previewed;
    previewed.fontSize = 90.0;
    view().setSubtitleSettings(previewed);
    view().toggleWord(0);
    showPreview();
    view().toggleWord(1);
    view().setSubtitleSettings({});
    const auto source = *view().selectedURL();

    std::filesystem::path from, to;
    Words words;
    SubtitleSettings style;
    script_->write = [&](const auto& video, const Words& chosen, const auto& settings, const auto& output,
                         const auto&, const auto&) {
        from = video;
        words = chosen;
        style = settings;
        to = output;
    };
    view().exportReel();
    SubtitleSettings later;
    later.fontSize = 40.0;
    view().setSubtitleSettings(later);
    runUntilIdle();
    EXPECT_EQ(from, source);
    EXPECT_EQ(to, reel_);
    EXPECT_EQ(textsOf(words), (Lines{"two", "three"}));
    EXPECT_EQ(style, previewed);
}

TEST_F(Export, tellsWhenItWouldNotWriteWhatIsChosenNow) {
    int told = 0;
    QObject::connect(&view(), &ContentView::previewOutdatedChanged, [&told] { ++told; });
    EXPECT_FALSE(view().isPreviewOutdated()) << "nothing is built";
    showPreview();
    EXPECT_FALSE(view().isPreviewOutdated());
    const SubtitleSettings built = view().subtitleSettings();
    told = 0;

    view().toggleWord(1);
    EXPECT_TRUE(view().isPreviewOutdated());
    view().toggleWord(1);
    EXPECT_FALSE(view().isPreviewOutdated()) << "taken back";
    view().selectNoWords();
    EXPECT_TRUE(view().isPreviewOutdated());
    view().selectAllWords();
    EXPECT_FALSE(view().isPreviewOutdated());
    EXPECT_EQ(told, 4);

    SubtitleSettings later = built;
    later.fontSize += 1.0;
    view().setSubtitleSettings(later);
    EXPECT_TRUE(view().isPreviewOutdated());
    EXPECT_EQ(told, 5);
    view().closePreview();
    EXPECT_FALSE(view().isPreviewOutdated()) << "nothing can be exported";
    EXPECT_EQ(told, 6);
}

TEST_F(Export, showsFractionsUnchanged) {
    script_->write = [](const auto&, const auto&, const auto&, const auto&, const OnProgress& onProgress,
                        const auto&) {
        for (const double fraction : {0.0, 0.125, 0.5, 0.875})
            onProgress(fraction);
    };
    exportAll();
    EXPECT_EQ(Lines(log_.begin() + std::ssize(begun_), log_.end()),
              (Lines{"progress 0.125", "progress 0.5", "progress 0.875", "progress 1",
                     "status Export complete", "exported my reel.mp4", "exporting false"}));
}

TEST_F(Export, dropsFractionsThatComeTooLate) {
    OnProgress late;
    script_->write = [&](const auto&, const auto&, const auto&, const auto&, const OnProgress& onProgress,
                         const auto&) { late = onProgress; };
    exportAll();
    late(0.3);
    QCoreApplication::processEvents();
    EXPECT_EQ(view().overallProgress(), 1.0);
    view_.reset();
    late(0.4);
    QCoreApplication::processEvents();
}

TEST_F(Export, aStopIsCancelledWithoutAnErrorCard) {
    startAndReach();
    view().stopPreviewOrExport();
    EXPECT_FALSE(view().exportTask().has_value());
    EXPECT_EQ(view().statusText().toStdString(), "Preparing export…");
    runUntilIdle();
    EXPECT_EQ(lastLines(3), (Lines{"status Export cancelled", "progress 0", "exporting false"}));
    EXPECT_FALSE(view().hasError());
    EXPECT_FALSE(view().exportTask().has_value());
    EXPECT_FALSE(view().canExport());
    EXPECT_EQ(view().dotColor(), Theme::white(0.25));
    EXPECT_FALSE(view().hasExportedFile());
}

TEST_F(Export, aStopTwiceOrWithoutATaskDoesNothing) {
    view().stopExport();
    EXPECT_EQ(log_, Lines{});
    startAndReach();
    view().stopExport();
    view().stopExport();
    runUntilIdle();
    EXPECT_EQ(std::ranges::count(log_, "status Export cancelled"), 1);
}

TEST_F(Export, failuresAreShownInTheirWords) {
    failWith(ExportError::exportFailed("disk full"));
    exportAll();
    EXPECT_EQ(lastLines(4), (Lines{"status Export failed",
                                   std::string("error ") + ExportError::exportFailed("disk full").what(),
                                   "progress 0", "exporting false"}));
    EXPECT_FALSE(view().hasExportedFile());
    EXPECT_FALSE(view().exportTask().has_value());
    EXPECT_EQ(view().dotColor(), Theme::white(0.25));
}

TEST_F(Export, whatHasNoWordsIsAFailureToo) {
    failWith(42);
    exportAll();
    EXPECT_EQ(view().errorMessage(), "unknown error");
}

TEST_F(Export, afterAnyEndTheNextPreviewAndExportRunThrough) {
    const auto write = script_->write;
    failWith(std::runtime_error("no"));
    exportAll();
    script_->write = write;
    showPreview();
    EXPECT_FALSE(view().hasError());
    exportAll();
    EXPECT_EQ(view().statusText().toStdString(), "Export complete");
}

TEST_F(Export, aScreenThatGoesStopsItAndTellsNobody) {
    startAndReach();
    log_.clear();
    view_.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(log_, Lines{});
}

TEST_F(Export, nothingElseStartsMeanwhile) {
    startAndReach();
    log_.clear();
    view().startPreview();
    view().startTranscription();
    view().exportReel();
    view().toggleWord(0);
    EXPECT_EQ(log_, Lines{});
    EXPECT_EQ(panels_.saveRequests.size(), 1u);
    EXPECT_TRUE(view().closeQuestionNeeded());
    view().cancelEverything();
    EXPECT_FALSE(view().closeQuestionNeeded());
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Export cancelled");
}

using ExportPanel = Export;

TEST_F(ExportPanel, isNotOpenedTwice) {
    panels_.answer.reset();
    panels_.meanwhile = [this] {
        view().exportReel();
        view().openFilePicker();
    };
    view().exportReel();
    EXPECT_EQ(panels_.saveRequests.size(), 1u);
    EXPECT_TRUE(panels_.requests.empty());
}

TEST_F(ExportPanel, whatStartedBehindItGoesOnUndisturbed) {
    Gate gate;
    panels_.meanwhile = [&] {
        script_->build = [&gate](const auto& video, const Words& words, const auto& style, const auto& stop) {
            gate.pass(stop);
            return bundleOf(video, words, style);
        };
        view().startPreview();
    };
    view().exportReel();
    EXPECT_FALSE(view().isExporting());
    EXPECT_TRUE(view().isBuildingPreview());
    gate.open();
    runUntilIdle();
    EXPECT_TRUE(view().hasPreview());
}

TEST_F(ExportPanel, aPreviewClosedBehindItIsWrittenAllTheSame) {
    panels_.meanwhile = [this] { view().closePreview(); };
    exportAll();
    EXPECT_EQ(view().statusText().toStdString(), "Export complete");
}

TEST_F(ExportPanel, anotherVideoBehindItIsNotWhatIsWritten) {
    const auto source = *view().selectedURL();
    std::filesystem::path from;
    script_->write = [&](const auto& video, const auto&, const auto&, const auto&, const auto&, const auto&) {
        from = video;
    };
    panels_.meanwhile = [this] { peer().setURL(folder_.path() / "other.mp4"); };
    exportAll();
    EXPECT_EQ(from, source);
}

TEST_F(ExportPanel, aScreenThatGoesBehindItIsNotTouchedAgain) {
    panels_.meanwhile = [this] { view_.reset(); };
    view_->exportReel();
    EXPECT_EQ(view_, nullptr);
    EXPECT_EQ(players_.alive, 0);
}

using ExportedFile = Export;

TEST_F(ExportedFile, canBeShownInItsFolder) {
    view().showExportInFolder();
    exportAll();
    EXPECT_TRUE(view().hasExportedFile());
    log_.clear();
    view().showExportInFolder();
    EXPECT_EQ(log_, Lines{"show " + reel_.string()});
}

TEST_F(ExportedFile, isOfferedUntilTheNextOperation) {
    const std::vector<std::function<void()>> operations{
        [this] { showPreview(); }, [this] { transcribe(); },
        [this] {
            view().openDroppedFile(
                QUrl::fromLocalFile(QString::fromStdString(folder_.file("other.mp4", "x").string())));
        }};
    for (const auto& operation : operations) {
        loadWords();
        showPreview();
        exportAll();
        ASSERT_TRUE(view().hasExportedFile());
        operation();
        EXPECT_FALSE(view().hasExportedFile());
    }
}

using ExportAnnouncement = Export;

TEST_F(ExportAnnouncement, isMadeOnlyWhenTheWindowIsNotInFront) {
    exportAll();
    EXPECT_EQ(std::ranges::count(log_, "notify Export complete: my reel.mp4"), 0);
    showPreview();
    isInFront_ = false;
    exportAll();
    EXPECT_EQ(std::ranges::count(log_, "notify Export complete: my reel.mp4"), 1);
}

TEST_F(ExportAnnouncement, tellsOfFailuresToo) {
    isInFront_ = false;
    failWith(std::runtime_error("disk full"));
    exportAll();
    EXPECT_EQ(std::ranges::count(log_, "notify Export failed: disk full"), 1);
}

TEST_F(ExportAnnouncement, isNotMadeOfAStop) {
    isInFront_ = false;
    startAndReach();
    view().stopExport();
    runUntilIdle();
    EXPECT_TRUE(std::ranges::none_of(log_, [](const auto& line) { return line.starts_with("notify"); }));
}

}  // namespace
}  // namespace korvane
