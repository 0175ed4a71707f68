#include "media/VideoProcessor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "media/ProcessingError.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/support/CollectingMainQueue.h"
#include "tests/support/FakeAsset.h"
#include "tests/support/FakeExportSession.h"

namespace korvane {
namespace {

struct VideoProcessorTest : testing::Test {
    CollectingMainQueue queue;
    std::shared_ptr<FakeAsset> asset = std::make_shared<FakeAsset>("talk.mp4");
    std::shared_ptr<SessionScript> session = std::make_shared<SessionScript>();
    bool sessionIsMade = true;
    int sessionsAskedFor = 0;
    std::filesystem::path opened;
    std::vector<double> progress;
    VideoProcessor processor{queue,
                             {
                                 [this](const std::filesystem::path& path, const std::stop_token&) {
                                     opened = path;
                                     return asset;
                                 },
                                 [this](const std::shared_ptr<Asset>& source,
                                        ExportPreset preset) -> std::unique_ptr<ExportSession> {
                                     ++sessionsAskedFor;
                                     EXPECT_EQ(source, asset);
                                     EXPECT_EQ(preset, ExportPreset::audioM4A);
                                     return sessionIsMade ? std::make_unique<FakeExportSession>(session)
                                                          : nullptr;
                                 },
                             }};

    ExtractedAudio extract(const std::stop_token& stop = {}) {
        return processor.extractAudio(
            "talk.mp4", [this](double f) { progress.push_back(f); }, stop);
    }
    void expectFailure(const std::string& description) {
        try {
            extract();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const ProcessingError& error) {
            EXPECT_EQ(error.what(), description);
        }
        queue.runAll();
        EXPECT_TRUE(progress.empty());
    }
};

TEST_F(VideoProcessorTest, writesAnM4aOfAFreshNameInTheTemporaryFolder) {
    asset->duration = MediaTime(36720, 600);
    const ExtractedAudio audio = extract();
    EXPECT_EQ(opened, "talk.mp4");
    EXPECT_EQ(audio.duration, 61.2);
    EXPECT_EQ(audio.url, session->outputPath);
    EXPECT_EQ(session->outputFileType, FileType::m4a);
    EXPECT_EQ(audio.url.parent_path() / "", std::filesystem::temp_directory_path() / "");
    EXPECT_THAT(
        audio.url.filename().string(),
        testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\.m4a"));
    EXPECT_FALSE(session->videoComposition.has_value());
    EXPECT_FALSE(session->timeRange.has_value());
}

TEST_F(VideoProcessorTest, twoExtractionsWriteTwoFiles) {
    EXPECT_NE(extract().url, extract().url);
}

TEST_F(VideoProcessorTest, aSilentVideoFailsBeforeASessionIsMade) {
    asset->audioTracks.clear();
    expectFailure("The selected video has no audio track.");
    EXPECT_EQ(sessionsAskedFor, 0);
    EXPECT_EQ(asset->loads, (std::vector<std::string>{"audio tracks"}));
}

TEST_F(VideoProcessorTest, aSessionThatCannotBeMadeIsAnError) {
    sessionIsMade = false;
    expectFailure("Audio export failed: Could not create export session.");
}

TEST_F(VideoProcessorTest, aFailureWithoutAnErrorIsUnknown) {
    session->endStatus = static_cast<int>(ExportStatus::failed);
    expectFailure("Audio export failed: Unknown error.");
}

TEST_F(VideoProcessorTest, aFailureOfTheSessionPassesThroughUnchanged) {
    session->endStatus = static_cast<int>(ExportStatus::failed);
    session->error = std::make_exception_ptr(MediaError("The disk is full."));
    try {
        extract();
        FAIL() << "nothing was thrown";
    } catch (const MediaError& error) {
        EXPECT_STREQ(error.what(), "The disk is full.");
    }
}

TEST_F(VideoProcessorTest, anyOtherStatusIsUnexpected) {
    for (const int status : {0, 1, 2, 7, -1}) {
        session->endStatus = status;
        expectFailure("Audio export failed: Unexpected export status.");
    }
}

TEST_F(VideoProcessorTest, errorsOfTheSourcePassThroughUnchanged) {
    for (const std::string load : {"audio tracks", "duration"}) {
        asset->beforeLoad = [&load](const std::string& name) {
            if (name == load)
                throw MediaError("can't read " + name);
        };
        try {
            extract();
            FAIL() << "nothing was thrown";
        } catch (const MediaError& error) {
            EXPECT_EQ(error.what(), "can't read " + load);
        }
    }
    EXPECT_EQ(sessionsAskedFor, 0);
}

TEST_F(VideoProcessorTest, progressIsTheSessionsOwnOnTheMainQueueAndEndsWithOne) {
    session->progress = {0.0F, 0.25F, 0.75F};
    extract();
    EXPECT_TRUE(progress.empty()) << "called outside the main queue";
    queue.runAll();
    EXPECT_EQ(progress, (std::vector{0.0, 0.25, 0.75, 1.0}));
}

TEST_F(VideoProcessorTest, aStopCancelsTheSessionAndNothingMoreIsReported) {
    std::stop_source source;
    session->progress = {0.5F};
    session->whileRunning = [&] { source.request_stop(); };
    EXPECT_THROW(extract(source.get_token()), CancellationError);
    EXPECT_EQ(session->cancelCalls, 1);
    queue.runAll();
    EXPECT_TRUE(progress.empty());
}

TEST_F(VideoProcessorTest, aStopFromAnotherThreadEndsTheExtraction) {
    std::promise<void> running;
    session->waitsForCancel = true;
    session->whileRunning = [&] { running.set_value(); };
    std::stop_source source;
    std::jthread person([&] {
        running.get_future().wait();
        source.request_stop();
    });
    EXPECT_THROW(extract(source.get_token()), CancellationError);
}

TEST_F(VideoProcessorTest, aStopBeforeTheSessionEndsWithoutOne) {
    std::stop_source source;
    asset->beforeLoad = [&](const std::string& name) {
        if (name == "duration")
            source.request_stop();
    };
    EXPECT_THROW(extract(source.get_token()), CancellationError);
    EXPECT_EQ(sessionsAskedFor, 0);
}

TEST_F(VideoProcessorTest, anUnusableTemporaryFolderIsSaidInOneSentence) {
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before == nullptr ? "" : before;
    setenv("TMPDIR", "/no/such/folder", 1);
    expectFailure("Audio export failed: There is no usable temporary folder. Check TMPDIR.");
    EXPECT_FALSE(session->ran);
    if (before == nullptr)
        unsetenv("TMPDIR");
    else
        setenv("TMPDIR", kept.c_str(), 1);
}

TEST(ProcessingError, everyCaseHasItsSentence) {
    EXPECT_STREQ(ProcessingError::exportFailed("no space").what(), "Audio export failed: no space");
    EXPECT_STREQ(ProcessingError::noAudioTrack().what(), "The selected video has no audio track.");
    EXPECT_EQ(ProcessingError::exportFailed("a"), ProcessingError::exportFailed("a"));
    EXPECT_FALSE(ProcessingError::exportFailed("a") == ProcessingError::exportFailed("b"));
    EXPECT_FALSE(ProcessingError::exportFailed("") == ProcessingError::noAudioTrack());
}

}  // namespace
}  // namespace korvane
