#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "editor/ExportError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/editor/EditorFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

struct ExportVideoTest : testing::Test {
    TemporaryFolder folder;
    std::filesystem::path output = folder.path() / "reel.mp4";
    EditorFixture fixture;
    SessionScript& session = *fixture.session;
    std::vector<double> progress;
    std::vector<SpeechSegment> words{{"So", 1.0, 2.5}, {"then", 3.0, 4.5}};

    void run(const std::stop_token& stop = {}) { runOn(fixture, stop); }
    void runOn(EditorFixture& other, const std::stop_token& stop = {}) {
        other.editor.exportVideo(
            "talk.mp4", words, SubtitleSettings(), output, [this](double f) { progress.push_back(f); }, stop);
    }
    /// Everything from `first` on.
    Lines logFrom(const std::string& first) const {
        return {std::find(fixture.log.begin(), fixture.log.end(), first), fixture.log.end()};
    }
    void expectFailure(const std::string& description) {
        try {
            run();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const ExportError& error) {
            EXPECT_EQ(error.what(), description);
        }
    }
};

TEST_F(ExportVideoTest, aNormalExportLogsEveryStep) {
    run();
    EXPECT_EQ(text(fixture.log),
              text({
                  "🎬 [Export] ===== START (debugStage=2) =====",
                  "🎬 [Export] videoURL  = talk.mp4",
                  "🎬 [Export] segments  = 2",
                  "🎬 [Export] outputURL = " + output.string(),
                  "🎬 [Export] [A] Loading asset…",
                  "🎬 [Export] [A] asset.isReadable=true  asset.isPlayable=true",
                  "🎬 [Export] [B] buildCompositionData…",
                  "🎬 [Build] Loading video tracks…",
                  "🎬 [Build] videoTracks.count = 1",
                  "🎬 [Build] audioTracks.count = 1",
                  "🎬 [Build] assetDuration = 10.0s",
                  "🎬 [Build] naturalSize=(1920.0, 1080.0)  nominalFrameRate=30.0",
                  "🎬 [Build] preferredTransform=[1.0, 0.0, 0.0, 1.0, 0.0, 0.0]",
                  "🎬 [Build] pre-roll inserted: 0.25s before first word",
                  "🎬 [Build] inserted 2/2 segments, total duration=3.25s",
                  "🎬 [VC] displaySize=(1920.0,1080.0) scale=1.7777777777777777 tx=-1166.6666666666665 ty=0.0",
                  "🎬 [VC] renderSize=(1080.0, 1920.0) frameDuration=0.03333333333333333s",
                  "🎬 [Export] [B] freshSubtitles = 1",
                  "🎬 [Export] [B] composition.duration = 3.25s",
                  "🎬 [Export] [B] composition.tracks = 2",
                  "🎬 [Export] [B] track[1] mediaType=vide  segments=3  duration=3.25s",
                  "🎬 [Export] [B] track[2] mediaType=soun  segments=3  duration=3.25s",
                  "🎬 [Export] [B] videoComposition.renderSize = (1080.0, 1920.0)",
                  "🎬 [Export] [B] videoComposition.frameDuration = 0.03333333333333333s  (1/30)",
                  "🎬 [Export] [B] videoComposition.instructions = 1",
                  "🎬 [Export] [C] AVAssetExportSession(presetName: HighestQuality)…",
                  "🎬 [Export] [C] supportedFileTypes = public.mpeg-4",
                  "🎬 [Export] [C] session.timeRange set (skipping 0.25s pre-roll)",
                  "🎬 [Export] [C] session.outputURL set",
                  "🎬 [Export] [C] stage≥1: assigning videoComposition (no animationTool)",
                  "🎬 [Export] [C] videoComposition assigned",
                  "🎬 [Export] [D] stage≥2: buildAnimationLayer…",
                  "🎬 [CA] Building 1 subtitle layers  boxY=1336.8",
                  "🎬 [Export] [D] parentLayer.sublayers.count = 2",
                  "🎬 [Export] [D] animationTool assigned and videoComposition re-set",
                  "🎬 [Export] [E] session.export() — starting…",
                  "🎬 [Export] [E] status=completed  error=none",
                  "🎬 [Export] ===== SUCCESS =====",
              }));
}

TEST_F(ExportVideoTest, theSessionGetsPictureSubtitlesAndAudioMix) {
    run();
    EXPECT_EQ(VideoEditor::debugStage, 2);
    EXPECT_EQ(session.outputPath, output);
    EXPECT_EQ(session.outputFileType, FileType::mp4);
    ASSERT_TRUE(session.audioMix.has_value());
    EXPECT_EQ(session.audioMix->inputParameters.size(), 1U);
    ASSERT_TRUE(session.videoComposition.has_value());
    EXPECT_EQ(session.videoComposition->renderSize, (Size{1080.0, 1920.0}));
    ASSERT_TRUE(session.videoComposition->animationTool.has_value());
    // Lines stay in composition time: the first one begins where the lead-in ends.
    const Layer& overlay = *session.videoComposition->animationTool->parentLayer->sublayers.at(1);
    ASSERT_EQ(overlay.sublayers.size(), 1U);
    EXPECT_EQ(overlay.sublayers[0]->text->text, "So then");
    const auto& visibility = std::get<BasicAnimation>(overlay.sublayers[0]->animations.at("visibility"));
    EXPECT_EQ(visibility.beginTime, 0.25);
    EXPECT_EQ(visibility.duration, 3.0);
    EXPECT_EQ(fixture.exported->duration(), MediaTime(1950, 600));
}

TEST_F(ExportVideoTest, theLeadInIsCutOffByTheTimeRange) {
    run();
    EXPECT_EQ(session.timeRange, (TimeRange{MediaTime(150, 600), MediaTime(1800, 600)}));
}

TEST_F(ExportVideoTest, withoutLeadInTheWholeCompositionIsWritten) {
    words = {{"So", 0.0, 1.0}};
    run();
    EXPECT_FALSE(session.timeRange.has_value());
    EXPECT_EQ(logFrom("🎬 [Export] [C] supportedFileTypes = public.mpeg-4").at(1),
              "🎬 [Export] [C] session.outputURL set");
}

TEST_F(ExportVideoTest, stageZeroWritesTheRawCuts) {
    EditorFixture raw(0);
    runOn(raw);
    EXPECT_FALSE(raw.session->videoComposition.has_value());
    EXPECT_TRUE(raw.session->audioMix.has_value());
    EXPECT_EQ(raw.log.front(), "🎬 [Export] ===== START (debugStage=0) =====");
    EXPECT_EQ(text(Lines(raw.log.end() - 5, raw.log.end())),
              text({
                  "🎬 [Export] [C] stage=0: SKIPPING videoComposition (minimal test)",
                  "🎬 [Export] [D] stage<2: SKIPPING animationTool (subtitle overlay)",
                  "🎬 [Export] [E] session.export() — starting…",
                  "🎬 [Export] [E] status=completed  error=none",
                  "🎬 [Export] ===== SUCCESS =====",
              }));
}

TEST_F(ExportVideoTest, stageOneFramesThePictureWithoutSubtitles) {
    EditorFixture framed(1);
    runOn(framed);
    ASSERT_TRUE(framed.session->videoComposition.has_value());
    EXPECT_FALSE(framed.session->videoComposition->animationTool.has_value());
    EXPECT_EQ(text(Lines(framed.log.end() - 6, framed.log.end() - 3)),
              text({
                  "🎬 [Export] [C] stage≥1: assigning videoComposition (no animationTool)",
                  "🎬 [Export] [C] videoComposition assigned",
                  "🎬 [Export] [D] stage<2: SKIPPING animationTool (subtitle overlay)",
              }));
}

TEST_F(ExportVideoTest, progressArrivesOnTheMainQueueOnlyAndEndsWithOne) {
    session.progress = {0.0F, 0.25F, 0.5F, 1.0F};
    run();
    EXPECT_TRUE(progress.empty()) << "called outside the main queue";
    fixture.queue.runAll();
    EXPECT_EQ(progress, (std::vector{0.0, 0.25, 0.5, 1.0, 1.0}));
}

TEST_F(ExportVideoTest, progressNeverFalls) {
    session.progress = {0.5F, 0.25F, std::numeric_limits<float>::quiet_NaN(), 0.75F};
    run();
    fixture.queue.runAll();
    EXPECT_EQ(progress, (std::vector{0.5, 0.75, 1.0}));
}

TEST_F(ExportVideoTest, nobodyNeedsToListenToProgress) {
    session.progress = {0.5F};
    fixture.editor.exportVideo("talk.mp4", words, SubtitleSettings(), output, {}, {});
    EXPECT_NO_THROW(fixture.queue.runAll());
}

TEST_F(ExportVideoTest, anOldFileIsGoneBeforeTheSourceIsOpened) {
    folder.file("reel.mp4", "old");
    bool stoodWhenOpened = true;
    fixture.onOpen = [&] { stoodWhenOpened = std::filesystem::exists(output); };
    run();
    EXPECT_FALSE(stoodWhenOpened);
}

TEST_F(ExportVideoTest, theSourceAsDestinationIsRefusedBeforeItIsOpened) {
    const auto video = folder.file("talk.mp4", "the recording");
    bool opened = false;
    fixture.onOpen = [&] { opened = true; };
    try {
        fixture.editor.exportVideo(video, words, SubtitleSettings(), video, {}, {});
        FAIL() << "nothing was thrown";
    } catch (const ExportError& error) {
        EXPECT_EQ(error.what(), "Export failed: " + video.string() +
                                    " is the source video itself. Choose another name for the reel.");
    }
    EXPECT_FALSE(opened);
    EXPECT_EQ(contentOf(video), "the recording");
    EXPECT_EQ(fixture.log.size(), 4U);
}

TEST_F(ExportVideoTest, anUnreadableSourceIsAnError) {
    fixture.asset->readable = false;
    fixture.asset->playable = false;
    expectFailure("Export failed: Asset is not readable: talk.mp4");
    EXPECT_EQ(fixture.log.back(), "🎬 [Export] [A] asset.isReadable=false  asset.isPlayable=false");
    EXPECT_FALSE(session.ran);
}

TEST_F(ExportVideoTest, aSourceThatCannotBePlayedIsOnlyLogged) {
    fixture.asset->playable = false;
    EXPECT_NO_THROW(run());
    EXPECT_EQ(fixture.log.at(5), "🎬 [Export] [A] asset.isReadable=true  asset.isPlayable=false");
}

TEST_F(ExportVideoTest, noWordsAreNoContent) {
    words.clear();
    expectFailure("None of the selected segments produced valid content.");
    EXPECT_EQ(fixture.log.back(), "🎬 [Build] inserted 0/0 segments, total duration=0.0s");
    EXPECT_FALSE(session.ran);
}

TEST_F(ExportVideoTest, aCompositionOfFailedInsertsHasNoDuration) {
    fixture.asset->audioTracks.clear();
    fixture.troubles.failingInserts = {{1, {1, 2, 3}}};
    expectFailure("Export failed: Composition duration is zero.");
    EXPECT_EQ(fixture.log.back(), "🎬 [Export] [B] track[1] mediaType=vide  segments=0  duration=0.0s");
    EXPECT_FALSE(session.ran);
}

TEST_F(ExportVideoTest, aSessionThatCannotBeMadeIsAnError) {
    fixture.sessionIsMade = false;
    expectFailure("Export failed: Could not create AVAssetExportSession.");
}

TEST_F(ExportVideoTest, aPresetThatCannotWriteMp4IsAnError) {
    session.supportedFileTypes = {FileType::m4a, FileType::m4a};
    expectFailure(
        "Export failed: Preset does not support .mp4 output. Supported: [\"public.mpeg-4-audio\", "
        "\"public.mpeg-4-audio\"]");
    EXPECT_EQ(fixture.log.back(),
              "🎬 [Export] [C] supportedFileTypes = public.mpeg-4-audio, public.mpeg-4-audio");
    EXPECT_FALSE(session.ran);
}

TEST_F(ExportVideoTest, whenOnlyTheLeadInIsLeftTheSessionSaysSo) {
    words = {{"none", 3.0, 3.0}};
    session.endStatus = static_cast<int>(ExportStatus::failed);
    session.error = std::make_exception_ptr(MediaError("There is nothing to write in the chosen range."));
    EXPECT_THROW(run(), MediaError);
    EXPECT_EQ(session.timeRange, (TimeRange{MediaTime(150, 600), kZeroTime}));
    EXPECT_EQ(text(logFrom("🎬 [Export] [E] session.export() — starting…")),
              text({
                  "🎬 [Export] [E] session.export() — starting…",
                  "🎬 [Export] [E] status=failed  error=There is nothing to write in the chosen range.",
                  "🎬 [Export] ===== FAILED: There is nothing to write in the chosen range. =====",
              }));
}

TEST_F(ExportVideoTest, aFailureOfTheSessionPassesThroughUnchanged) {
    session.progress = {0.5F};
    session.endStatus = static_cast<int>(ExportStatus::failed);
    session.error = std::make_exception_ptr(MediaError("The disk is full."));
    try {
        run();
        FAIL() << "nothing was thrown";
    } catch (const MediaError& error) {
        EXPECT_STREQ(error.what(), "The disk is full.");
    }
    EXPECT_EQ(fixture.log.back(), "🎬 [Export] ===== FAILED: The disk is full. =====");
    fixture.queue.runAll();
    EXPECT_EQ(progress, (std::vector{0.5}));
}

TEST_F(ExportVideoTest, aFailureWithoutAnErrorHasItsOwnWords) {
    session.endStatus = static_cast<int>(ExportStatus::failed);
    expectFailure("Export failed: Export failed (no error object).");
    EXPECT_EQ(text(logFrom("🎬 [Export] [E] status=failed  error=none")),
              text({
                  "🎬 [Export] [E] status=failed  error=none",
                  "🎬 [Export] ===== FAILED: Export failed: Export failed (no error object). =====",
              }));
}

TEST_F(ExportVideoTest, anUnexpectedStatusIsNamed) {
    const std::pair<int, const char*> cases[] = {{0, "unknown"},    {1, "waiting"},    {2, "exporting"},
                                                 {6, "unknown(6)"}, {7, "unknown(7)"}, {-1, "unknown(-1)"}};
    for (const auto& [status, text] : cases) {
        session.endStatus = status;
        expectFailure(std::string("Export failed: Unexpected export status: ") + text);
        EXPECT_EQ(fixture.log.back(), std::string("🎬 [Export] [E] status=") + text + "  error=none");
    }
}

TEST_F(ExportVideoTest, aStopWhileTheSessionRunsCancelsItAndNothingMoreIsReported) {
    std::stop_source source;
    session.progress = {0.5F};
    session.whileRunning = [&] {
        fixture.queue.runAll();
        source.request_stop();
    };
    EXPECT_THROW(run(source.get_token()), CancellationError);
    EXPECT_EQ(session.cancelCalls, 1);
    EXPECT_EQ(fixture.log.back(), "🎬 [Export] [E] status=cancelled  error=none");
    fixture.queue.runAll();
    EXPECT_EQ(progress, (std::vector{0.5}));
}

TEST_F(ExportVideoTest, progressThatWaitsInTheQueueIsDroppedByAStop) {
    std::stop_source source;
    session.progress = {0.25F, 0.5F};
    session.whileRunning = [&] { source.request_stop(); };
    EXPECT_THROW(run(source.get_token()), CancellationError);
    fixture.queue.runAll();
    EXPECT_TRUE(progress.empty());
}

TEST_F(ExportVideoTest, aStopFromAnotherThreadEndsTheExport) {
    std::promise<void> running;
    session.waitsForCancel = true;
    session.whileRunning = [&] { running.set_value(); };
    std::stop_source source;
    std::jthread person([&] {
        running.get_future().wait();
        source.request_stop();
    });
    EXPECT_THROW(run(source.get_token()), CancellationError);
    EXPECT_EQ(session.cancelCalls, 1);
}

TEST_F(ExportVideoTest, aStopThatCameBeforeTheExportTakesNoFileAway) {
    folder.file("reel.mp4", "old");
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(run(source.get_token()), CancellationError);
    EXPECT_EQ(contentOf(output), "old");
    EXPECT_FALSE(session.ran);
}

TEST_F(ExportVideoTest, aStopWhileTheSourceLoadsEndsBeforeASessionIsMade) {
    std::stop_source source;
    fixture.asset->beforeLoad = [&](const std::string&) { source.request_stop(); };
    EXPECT_THROW(run(source.get_token()), CancellationError);
    EXPECT_EQ(fixture.exported, nullptr);
}

TEST_F(ExportVideoTest, aStopThatComesTooLateDoesNotUndoASuccess) {
    std::stop_source source;
    session.progress = {0.5F};
    run(source.get_token());
    source.request_stop();
    fixture.queue.runAll();
    EXPECT_EQ(progress, (std::vector{1.0}));
    EXPECT_EQ(session.cancelCalls, 0);
}

}  // namespace
}  // namespace korvane
