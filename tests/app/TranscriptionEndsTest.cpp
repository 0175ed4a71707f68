// How a transcription ends when it is stopped, fails or loses its screen, in each of its phases.
#include <atomic>
#include <new>
#include <stdexcept>
#include <thread>

#include "media/ProcessingError.h"
#include "platform/ffmpeg/MediaError.h"
#include "tests/app/ScreenFixture.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

enum class Phase { permission, extraction, recognition };

std::string nameOf(const testing::TestParamInfo<Phase>& info) {
    switch (info.param) {
        case Phase::permission:
            return "permission";
        case Phase::extraction:
            return "extraction";
        case Phase::recognition:
            return "recognition";
    }
    return {};
}

class TranscriptionEnds : public Screen, public testing::WithParamInterface<Phase> {
  protected:
    TranscriptionEnds() { loadVideo(); }

    /// Does this at the beginning of the phase under test, on its worker.
    void during(const std::function<void(const std::stop_token&)>& act) {
        switch (GetParam()) {
            case Phase::permission:
                script_->permission = act;
                break;
            case Phase::extraction:
                script_->extract = [act, inner = extract_](const auto& from, const auto& onProgress,
                                                           const auto& stop) {
                    onProgress(0.5);
                    act(stop);
                    return inner(from, onProgress, stop);
                };
                break;
            case Phase::recognition:
                script_->recognise = [act](const auto&, double, const auto&, const OnProgress& onProgress,
                                           const std::stop_token& stop) {
                    onProgress(0.5);
                    act(stop);
                    return manyWords(3);
                };
                break;
        }
    }
    void startAndReach(Gate& gate) {
        during([&gate](const std::stop_token& stop) { gate.pass(stop); });
        view().startTranscription();
        runUntil([&] { return gate.isReached(); });
    }
    double progressOfThePhase() const {
        switch (GetParam()) {
            case Phase::permission:
                return 0.0;
            case Phase::extraction:
                return 0.15;
            case Phase::recognition:
                return 0.3 + 0.5 * 0.7;
        }
        return -1.0;
    }
    void expectUsableAgain() {
        EXPECT_FALSE(view().isProcessing());
        EXPECT_FALSE(view().transcriptionTask().has_value());
        EXPECT_TRUE(view().canTranscribe());
        EXPECT_TRUE(view().segments().empty());
        EXPECT_TRUE(view().selectedWordIndices().empty());
        EXPECT_EQ(view().overallProgress(), progressOfThePhase());
        EXPECT_FALSE(std::filesystem::exists(audio_));
        EXPECT_EQ(contentOf(audio_), "");
    }
    const decltype(Script::extract) extract_ = script_->extract;

    void expectFailure(const std::function<void()>& fail, const std::string& message) {
        during([fail](const std::stop_token&) { fail(); });
        record();
        transcribe();
        EXPECT_EQ(view().statusText().toStdString(), "Failed");
        EXPECT_EQ(view().errorMessage(), message);
        ASSERT_GE(log_.size(), 3u);
        EXPECT_EQ(std::vector<std::string>(log_.end() - 3, log_.end()),
                  (std::vector<std::string>{"status Failed", "error " + message, "processing false"}));
        expectUsableAgain();
    }
};

INSTANTIATE_TEST_SUITE_P(In, TranscriptionEnds,
                         testing::Values(Phase::permission, Phase::extraction, Phase::recognition), nameOf);

TEST_P(TranscriptionEnds, aStopIsCancelledWithoutAnErrorCard) {
    Gate gate;
    startAndReach(gate);
    view().stopTranscription();
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_EQ(view().errorMessage(), std::nullopt);
    expectUsableAgain();
}

TEST_P(TranscriptionEnds, aStopOnlyRequestsAndSetsNoStatusItself) {
    Gate gate;
    startAndReach(gate);
    record();
    view().stopTranscription();
    EXPECT_FALSE(view().transcriptionTask().has_value());
    EXPECT_TRUE(view().isProcessing());
    EXPECT_EQ(log_, std::vector<std::string>{});
    view().stopTranscription();
    view().startTranscription();  // refused: the first one is still unwinding
    runUntilIdle();
    EXPECT_EQ(log_.back(), "processing false");
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
}

TEST_P(TranscriptionEnds, anEndThatCameBeforeTheStopCounts) {
    Gate gate;
    during([&gate](const std::stop_token&) { gate.passDeaf(); });
    view().startTranscription();
    runUntil([&] { return gate.isReached(); });
    view().stopTranscription();
    gate.open();
    runUntilIdle();
    // Whoever is deaf delivers; the services behind it were only scripted to look at nothing.
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

TEST_P(TranscriptionEnds, afterAStopTheNextOneRunsThrough) {
    Gate gate;
    startAndReach(gate);
    view().stopTranscription();
    runUntilIdle();
    gate.open();
    transcribe();
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
}

TEST_P(TranscriptionEnds, permissionErrorsAreShownInTheirWords) {
    expectFailure([] { throw SpeechError::permissionDenied(); }, SpeechError::permissionDenied().what());
}

TEST_P(TranscriptionEnds, administratorsRefusalsAreShownInTheirWords) {
    expectFailure([] { throw SpeechError::permissionRestricted(); },
                  SpeechError::permissionRestricted().what());
}

TEST_P(TranscriptionEnds, missingRecognisersAreShownInTheirWords) {
    const auto error = SpeechError::recognizerUnavailable(Locale{"fr-FR"});
    expectFailure([error] { throw error; }, error.what());
}

TEST_P(TranscriptionEnds, extractionErrorsAreShownInTheirWords) {
    expectFailure([] { throw ProcessingError::noAudioTrack(); }, ProcessingError::noAudioTrack().what());
}

TEST_P(TranscriptionEnds, platformErrorsAreShownInTheirWords) {
    expectFailure([] { throw MediaError("Could not open “clip.mp4”: moov atom not found."); },
                  "Could not open “clip.mp4”: moov atom not found.");
}

TEST_P(TranscriptionEnds, whatHasNoWordsIsAFailureToo) {
    expectFailure([] { throw 42; }, "unknown error");
}

TEST_P(TranscriptionEnds, theNextStartClearsTheErrorCard) {
    expectFailure([] { throw ProcessingError::noAudioTrack(); }, ProcessingError::noAudioTrack().what());
    during([](const std::stop_token&) {});
    transcribe();
    EXPECT_FALSE(view().hasError());
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
}

TEST_P(TranscriptionEnds, aScreenThatGoesStopsAndJoinsAndTellsNobody) {
    Gate gate;
    startAndReach(gate);
    record();
    bool gone = false;
    QObject::connect(&view(), &QObject::destroyed, QCoreApplication::instance(), [&] { gone = true; });
    view_.reset();
    EXPECT_TRUE(gone);
    EXPECT_EQ(log_, std::vector<std::string>{});
    EXPECT_FALSE(std::filesystem::exists(audio_));
    QCoreApplication::processEvents();
    EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_P(TranscriptionEnds, aScreenThatGoesAfterAStopJoinsTheUnwindingTaskToo) {
    Gate gate;
    std::atomic<bool> left = false;
    during([&](const std::stop_token&) {
        gate.passDeaf();
        left = true;
    });
    view().startTranscription();
    runUntil([&] { return gate.isReached(); });
    view().stopTranscription();
    std::thread opener([&] { gate.open(); });
    view_.reset();
    EXPECT_TRUE(left);
    opener.join();
    QCoreApplication::processEvents();  // drops what the worker left in the queue
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

using LateProgress = Screen;

TEST_F(LateProgress, thatComesAfterTheScreenIsTakenFromTheQueueAndDropped) {
    loadVideo();
    OnProgress late;
    Gate gate;
    script_->extract = [&](const auto&, const OnProgress& onProgress,
                           const std::stop_token& stop) -> ExtractedAudio {
        late = onProgress;
        onProgress(0.6);  // still waits in the queue when the screen goes
        gate.pass(stop);
        return {audio_, 1.0};
    };
    record();
    view().startTranscription();
    runUntil([&] { return view().statusText() == QStringLiteral("Extracting audio…"); });
    gate.waitUntilReached();
    log_.clear();
    view_.reset();
    ASSERT_TRUE(late);
    late(0.7);
    std::thread([&] { late(0.8); }).join();
    bool everythingBeforeRan = false;
    queue_.post([&] { everythingBeforeRan = true; });
    runUntil([&] { return everythingBeforeRan; });
    EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_F(LateProgress, thatComesAfterItsOperationMovesNothing) {
    loadVideo();
    OnProgress late;
    script_->recognise = [&](const auto&, double, const auto&, const OnProgress& onProgress,
                             const auto&) -> Words {
        late = onProgress;
        onProgress(0.5);
        throw SpeechError::permissionDenied();
    };
    transcribe();
    ASSERT_TRUE(late);
    const double reached = view().overallProgress();
    record();
    late(0.7);
    std::thread([&] { late(0.8); }).join();
    bool everythingBeforeRan = false;
    queue_.post([&] { everythingBeforeRan = true; });
    runUntil([&] { return everythingBeforeRan; });
    EXPECT_EQ(view().overallProgress(), reached);
    EXPECT_EQ(log_, std::vector<std::string>{});
}

using TranscriptionFiles = Screen;

TEST_F(TranscriptionFiles, aStopThatTheExtractionDidNotHearEndsTheRecognition) {
    loadVideo();
    Gate extraction;
    bool wasThere = false;
    script_->extract = [&, inner = script_->extract](const auto& from, const auto& onProgress,
                                                     const auto& stop) {
        extraction.passDeaf();
        return inner(from, onProgress, stop);
    };
    script_->recognise = [&](const auto& url, double, const auto&, const auto&, const std::stop_token& stop) {
        wasThere = std::filesystem::exists(url);
        checkCancelled(stop);
        return wordsOf({"never"});
    };
    view().startTranscription();
    runUntil([&] { return extraction.isReached(); });
    view().stopTranscription();
    extraction.open();
    runUntilIdle();
    EXPECT_TRUE(wasThere);
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_FALSE(view().isProcessing());
    EXPECT_FALSE(view().transcriptionTask().has_value());
    EXPECT_FALSE(view().hasError());
    EXPECT_TRUE(view().segments().empty());
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

TEST_F(TranscriptionFiles, soundThatNobodyTakesAnyMoreIsDeletedToo) {
    loadVideo();
    Gate extracted;
    std::atomic<bool> isWritten = false;
    script_->extract = [&, inner = script_->extract](const auto& from, const auto& onProgress,
                                                     const std::stop_token& stop) {
        // The end of the screen asks for the stop and then waits: only now does the sound arrive.
        const std::stop_callback leaving(stop, [&] { extracted.open(); });
        const ExtractedAudio result = inner(from, onProgress, stop);
        isWritten = std::filesystem::exists(result.url);
        extracted.passDeaf();
        return result;
    };
    view().startTranscription();
    runUntil([&] { return extracted.isReached(); });
    ASSERT_TRUE(isWritten);
    view_.reset();
    QCoreApplication::processEvents();  // drops what the worker left in the queue
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

TEST_F(TranscriptionFiles, soundIsThereUntilRecognitionHasEnded) {
    loadVideo();
    bool there = false;
    script_->recognise = [&](const auto& url, double, const auto&, const auto&, const auto&) {
        there = std::filesystem::exists(url);
        return Words();
    };
    transcribe();
    EXPECT_TRUE(there);
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

TEST_F(TranscriptionFiles, soundThatCannotBeDeletedDisturbsNobody) {
    loadVideo();
    // Nobody can delete a folder with something in it as a file.
    folder_.file("audio.m4a/inside", "x");
    script_->extract = [this](const auto&, const auto&, const auto&) { return ExtractedAudio{audio_, 1.0}; };
    transcribe();
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
    EXPECT_FALSE(view().hasError());
    EXPECT_TRUE(std::filesystem::exists(audio_));
}

TEST_F(TranscriptionFiles, soundThatIsGoneAlreadyDisturbsNobody) {
    loadVideo();
    script_->extract = [this](const auto&, const auto&, const auto&) { return ExtractedAudio{audio_, 1.0}; };
    transcribe();
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
}

TEST_F(TranscriptionFiles, theDotTellsHowItEnded) {
    loadVideo();
    transcribe();
    EXPECT_EQ(view().dotColor(), Theme::successGreen());
    script_->recognise = [](const auto&, double, const auto&, const auto&, const auto&) -> Words {
        throw SpeechError::permissionDenied();
    };
    transcribe();
    EXPECT_EQ(view().dotColor(), Theme::orange());
    script_->permission = [](const auto&) { throw SpeechError::permissionDenied(); };
    transcribe();
    EXPECT_EQ(view().dotColor(), Theme::white(0.25));
}

TEST_F(TranscriptionFiles, theDotTellsThatAStopCamePartWay) {
    loadVideo();
    Gate gate;
    script_->recognise = [&](const auto&, double, const auto&, const auto&, const std::stop_token& stop) {
        gate.pass(stop);
        return Words();
    };
    view().startTranscription();
    runUntil([&] { return gate.isReached(); });
    EXPECT_EQ(view().dotColor(), Theme::accent());
    view().stopTranscription();
    EXPECT_EQ(view().dotColor(), Theme::accent());  // it still runs
    runUntilIdle();
    EXPECT_EQ(view().statusText().toStdString(), "Cancelled");
    EXPECT_EQ(view().dotColor(), Theme::orange());
}

TEST_F(TranscriptionFiles, aStopWithoutATaskDoesNothing) {
    record();
    view().stopTranscription();
    EXPECT_TRUE(log_.empty());
}

}  // namespace
}  // namespace korvane
