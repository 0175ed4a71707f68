// The way from a video to words when nobody disturbs it: order of changes, progress, what it asks for.
#include <QThread>
#include <thread>

#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

class Transcription : public Screen {
  protected:
    /// What every transcription announces at its start, from a screen that shows an old transcript.
    const Lines begun_{"processing true", "progress 0", "segments 0", "selected 0",
                       "bundle none",     "error none", "start",      "status Requesting permission…"};

    void showOldTranscript() {
        loadVideo();
        peer().setWords(manyWords(4));
        peer().setBundle(someBundle());
        peer().setError("old");
        peer().setProgress(1.0);
        record();
    }
    Lines afterBegin() {
        EXPECT_GE(log_.size(), begun_.size());
        const auto rest = log_.begin() + static_cast<std::ptrdiff_t>(std::min(log_.size(), begun_.size()));
        EXPECT_EQ(Lines(log_.begin(), rest), begun_);
        return {rest, log_.end()};
    }
    void recognise(Words words) {
        script_->recognise = [words = std::move(words)](const auto&, double, const auto&, const auto&,
                                                        const auto&) { return words; };
    }
};

TEST_F(Transcription, withoutAVideoOnlySetsTheErrorMessage) {
    record();
    view().startTranscription();
    EXPECT_EQ(log_, Lines{"error Please select a video file first."});
    EXPECT_FALSE(view().transcriptionTask().has_value());
    EXPECT_FALSE(view().isProcessing());
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
}

TEST_F(Transcription, changesTheStateInOrder) {
    showOldTranscript();
    transcribe();
    EXPECT_EQ(afterBegin(),
              (Lines{"status Extracting audio…", "progress 0.3", "status Transcribing speech…", "progress 1",
                     "segments 3", "selected 3", "status Transcribed — 3 words", "processing false"}));
}

TEST_F(Transcription, everythingBeforeTheFirstWaitHappensAtOnce) {
    showOldTranscript();
    view().startTranscription();
    EXPECT_EQ(log_, begun_);
    EXPECT_TRUE(view().transcriptionTask().has_value());
    EXPECT_EQ(view().processingStartTime(), now_);
    runUntilIdle();
    EXPECT_FALSE(view().transcriptionTask().has_value());
}

TEST_F(Transcription, oneWordIsNoPlural) {
    loadVideo();
    recognise(manyWords(1));
    transcribe();
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 1 word");
    EXPECT_EQ(view().selectedWordIndices(), upTo(1));
}

TEST_F(Transcription, noWordsAreShownAsAnError) {
    showOldTranscript();
    recognise({});
    transcribe();
    EXPECT_EQ(afterBegin(), (Lines{"status Extracting audio…", "progress 0.3", "status Transcribing speech…",
                                   "progress 1", "status No speech detected",
                                   "error No speech was detected in the video.", "processing false"}));
    EXPECT_EQ(view().overallProgress(), 1.0);
    EXPECT_TRUE(view().canTranscribe());
}

TEST_F(Transcription, everyWordOfAManyIsSelected) {
    loadVideo();
    recognise(manyWords(5000));
    transcribe();
    EXPECT_EQ(view().segments().size(), 5000u);
    EXPECT_EQ(view().selectedWordIndices(), upTo(5000));
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 5000 words");
    EXPECT_EQ(view().words()->rowCount(), 5000);
}

TEST_F(Transcription, theServicesGetWhatTheyNeed) {
    loadVideo();
    std::filesystem::path video;
    std::filesystem::path sound;
    double duration = 0.0;
    std::string locale;
    std::string content;
    const auto extract = script_->extract;
    script_->extract = [&](const auto& from, const auto& onProgress, const auto& stop) {
        video = from;
        return extract(from, onProgress, stop);
    };
    script_->recognise = [&](const auto& url, double seconds, const Locale& wanted, const auto&,
                             const auto&) {
        sound = url;
        duration = seconds;
        locale = wanted.identifier;
        content = contentOf(url);
        return Words();
    };
    view().selectLanguage(1);
    transcribe();
    EXPECT_EQ(video, folder_.path() / "clip.mp4");
    EXPECT_EQ(sound, audio_);
    EXPECT_EQ(duration, 12.5);
    EXPECT_EQ(locale, languageCatalogue()[1].id);
    EXPECT_EQ(content, "sound");
    EXPECT_FALSE(std::filesystem::exists(audio_));
}

TEST_F(Transcription, theLanguageIsTheOneChosenWhenRecognitionBegins) {
    loadVideo();
    Gate gate;
    const auto extract = script_->extract;
    script_->extract = [&](const auto& from, const auto& onProgress, const auto& stop) {
        gate.pass(stop);
        return extract(from, onProgress, stop);
    };
    std::string locale;
    script_->recognise = [&](const auto&, double, const Locale& wanted, const auto&, const auto&) {
        locale = wanted.identifier;
        return Words();
    };
    view().startTranscription();
    runUntil([&] { return gate.isReached(); });
    view().selectLanguage(2);  // the picker is deaf now
    EXPECT_EQ(view().selectedLanguageIndex(), 0);
    view().setSelectedLanguage(languageCatalogue()[5]);
    gate.open();
    runUntilIdle();
    EXPECT_EQ(locale, languageCatalogue()[5].id);
}

TEST_F(Transcription, theServicesWorkOffTheMainThreadOneAfterTheOther) {
    loadVideo();
    const QThread* main = QThread::currentThread();
    Lines order;
    const auto note = [&](const char* name) {
        EXPECT_NE(QThread::currentThread(), main);
        order.emplace_back(name);
    };
    script_->permission = [&](const auto&) { note("permission"); };
    const auto extract = script_->extract;
    script_->extract = [&](const auto& from, const auto& onProgress, const auto& stop) {
        note("extract");
        return extract(from, onProgress, stop);
    };
    script_->recognise = [&](const auto&, double, const auto&, const auto&, const auto&) {
        note("recognise");
        return Words();
    };
    transcribe();
    EXPECT_EQ(order, (Lines{"permission", "extract", "recognise"}));
}

TEST_F(Transcription, aSecondStartWhileOneRunsIsRefused) {
    loadVideo();
    Gate gate;
    std::atomic<int> calls = 0;
    script_->permission = [&](const std::stop_token& stop) {
        ++calls;
        gate.pass(stop);
    };
    view().startTranscription();
    EXPECT_FALSE(view().canTranscribe());
    record();
    view().startTranscription();
    EXPECT_TRUE(log_.empty());
    gate.open();
    runUntilIdle();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(view().canTranscribe());
}

TEST_F(Transcription, isRefusedWhileAnotherOperationRuns) {
    loadVideo();
    for (const auto& set : {&ContentViewPeer::setBuildingPreview, &ContentViewPeer::setExporting}) {
        ContentViewPeer p = peer();
        (p.*set)(true);
        view().startTranscription();
        EXPECT_FALSE(view().isProcessing());
        (p.*set)(false);
    }
}

TEST_F(Transcription, oneAfterTheOtherGoesAsWellAsTheFirst) {
    loadVideo();
    for (int round = 0; round < 3; ++round) {
        transcribe();
        EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
    }
}

TEST_F(Transcription, theNextOneMayStartFromTheSignalThatTheLastOneSends) {
    loadVideo();
    int rounds = 0;
    QObject::connect(&view(), &ContentView::isProcessingChanged, &view(), [&] {
        if (!view().isProcessing() && ++rounds < 3)
            view().startTranscription();
    });
    view().startTranscription();
    runUntil([&] { return rounds == 3; });
    EXPECT_FALSE(view().transcriptionTask().has_value());
    EXPECT_EQ(view().statusText().toStdString(), "Transcribed — 3 words");
}

TEST_F(Transcription, progressFromAnyThreadIsAppliedOnTheMainThread) {
    loadVideo();
    const QThread* main = QThread::currentThread();
    script_->extract = [&](const auto&, const OnProgress& onProgress, const auto&) {
        std::thread([&] { onProgress(0.5); }).join();
        onProgress(1.0);
        return ExtractedAudio{audio_, 1.0};
    };
    script_->recognise = [&](const auto&, double, const auto&, const OnProgress& onProgress, const auto&) {
        onProgress(0.5);
        std::thread([&] { onProgress(1.0); }).join();
        return manyWords(2);
    };
    std::vector<double> seen;
    QObject::connect(&view(), &ContentView::overallProgressChanged, &view(), [&] {
        EXPECT_EQ(QThread::currentThread(), main);
        seen.push_back(view().overallProgress());
    });
    transcribe();
    EXPECT_EQ(seen, (std::vector<double>{0.15, 0.3, 0.3 + 0.5 * 0.7, 1.0}));
}

TEST_F(Transcription, progressThatComesThroughTheQueueIsAppliedToo) {
    loadVideo();
    script_->extract = [&](const auto&, const OnProgress& onProgress, const auto&) {
        queue_.post([onProgress] { onProgress(0.5); });
        return ExtractedAudio{audio_, 1.0};
    };
    record();
    transcribe();
    EXPECT_EQ(std::ranges::count(log_, "progress 0.15"), 1);
}

TEST_F(Transcription, recognitionStartsAtExactlyThreeTenthsAndNothingLateDisturbsIt) {
    loadVideo();
    Gate gate;
    OnProgress late;
    script_->extract = [&](const auto&, const OnProgress& onProgress, const auto&) {
        late = onProgress;
        onProgress(0.9);
        return ExtractedAudio{audio_, 1.0};
    };
    script_->recognise = [&](const auto&, double, const auto&, const auto&, const std::stop_token& stop) {
        late(1.0);  // from a worker, into the queue
        gate.pass(stop);
        return manyWords(1);
    };
    view().startTranscription();
    runUntil([&] { return gate.isReached(); });
    EXPECT_EQ(view().overallProgress(), 0.3);
    std::vector<double> seen;
    QObject::connect(&view(), &ContentView::overallProgressChanged, &view(),
                     [&] { seen.push_back(view().overallProgress()); });
    late(0.1);  // on the main thread
    std::thread([&] { late(0.2); }).join();
    QCoreApplication::processEvents();
    EXPECT_EQ(view().overallProgress(), 0.3);
    gate.open();
    runUntilIdle();
    EXPECT_EQ(seen, std::vector<double>{1.0});
}

TEST_F(Transcription, progressAfterTheEndChangesNothing) {
    loadVideo();
    OnProgress late;
    script_->recognise = [&](const auto&, double, const auto&, const OnProgress& onProgress, const auto&) {
        late = onProgress;
        return manyWords(1);
    };
    transcribe();
    late(0.5);
    std::thread([&] { late(0.5); }).join();
    QCoreApplication::processEvents();
    EXPECT_EQ(view().overallProgress(), 1.0);
}

TEST_F(Transcription, theEventLoopKeepsRunningMeanwhile) {
    loadVideo();
    Gate gate;
    script_->permission = [&](const std::stop_token& stop) { gate.pass(stop); };
    view().startTranscription();
    bool ran = false;
    queue_.post([&] { ran = true; });
    runUntil([&] { return ran && gate.isReached(); });
    EXPECT_TRUE(view().isProcessing());
    gate.open();
    runUntilIdle();
}

}  // namespace
}  // namespace korvane
