#include "app/SpeechModels.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QUrl>

#include "tests/app/ScreenFixture.h"
#include "tests/app/ScriptedModels.h"

namespace korvane {
namespace {

class SpeechModelsOnScreen : public Screen {
  protected:
    SpeechModels& models() { return *view_->speechModels(); }

    /// Opens the sheet, as it were.
    void look() {
        models().look();
        runUntil([this] { return models().isKnown(); });
    }
    const SpeechModelRow& row(const std::string& id) {
        const auto& rows = models().rows()->rows();
        const auto found = std::ranges::find(rows, QString::fromStdString(id), &SpeechModelRow::modelId);
        if (found == rows.end())
            throw std::runtime_error("no row is called " + id);
        return *found;
    }
    std::string action(const std::string& id) { return row(id).actionText.toStdString(); }
    std::string progress(const std::string& id) { return row(id).progressText.toStdString(); }
    void act(const char* id) { models().act(QString::fromLatin1(id)); }

    /// Downloads report 31 MB and then wait.
    void downloadsWait() {
        modelsScript_->download = [this](const std::string& id, const auto& report, const auto& stop) {
            report(ModelsScript::report(31'000'000, 81'768'585));
            modelsScript_->setPart(id, 31'000'000);
            gate_.pass(stop);
        };
    }
    void beginDownload() {
        downloadsWait();
        look();
        act("base");
        runUntil([this] { return row("base").fraction > 0.3; });
    }
    Gate gate_;
};

TEST_F(SpeechModelsOnScreen, nothingIsLookedAtBeforeSomebodyWantsToSeeIt) {
    EXPECT_TRUE(models().isOffered());
    EXPECT_FALSE(models().isKnown());
    EXPECT_EQ(models().rows()->rowCount(), 0);
}

TEST_F(SpeechModelsOnScreen, eachIsShownWithItsSizeMemoryAndSpeedAndOneIsRecommended) {
    look();
    ASSERT_EQ(models().rows()->rowCount(), 4);
    EXPECT_EQ(row("base").name, QStringLiteral("Whisper base"));
    EXPECT_EQ(row("base").detail,
              QStringLiteral("82 MB · 450 MB of memory · about 15 times faster than the speech"));
    EXPECT_EQ(row("turbo").detail, QStringLiteral("574 MB · 1.3 GB of memory · about as fast as the speech"));
    for (const char* id : {"tiny", "base", "small", "turbo"}) {
        EXPECT_EQ(row(id).recommended, std::string(id) == "base");
        EXPECT_EQ(action(id), "Install");
    }
    EXPECT_EQ(row("base").actionName, QStringLiteral("Install Whisper base"));
    EXPECT_FALSE(models().hasInstalled());
    EXPECT_TRUE(modelsScript_->calls().empty()) << "nothing is downloaded unasked";
}

TEST_F(SpeechModelsOnScreen, aDownloadShowsItsProgressAndEndsInstalledAndInUse) {
    EXPECT_EQ(models().downloadText(), QString());
    QSignalSpy told(&models(), &SpeechModels::downloadTextChanged);
    beginDownload();
    EXPECT_EQ(progress("base"), "37% · 4.2 MB/s · 13 s left");
    EXPECT_EQ(models().downloadText(), QStringLiteral("Downloading… 37%"));
    EXPECT_GE(told.count(), 1);
    EXPECT_NEAR(row("base").fraction, 0.379, 0.001);
    EXPECT_TRUE(row("base").downloading);
    EXPECT_EQ(action("base"), "Stop");
    EXPECT_EQ(action("tiny"), "Install");
    QSignalSpy arrived(&models(), &SpeechModels::arrived);
    gate_.open();
    runUntil([this] { return row("base").installed; });
    EXPECT_EQ(arrived.size(), 1);
    EXPECT_TRUE(row("base").inUse);
    EXPECT_FALSE(row("base").downloading);
    EXPECT_EQ(action("base"), "Remove");
    EXPECT_EQ(progress("base"), "");
    EXPECT_TRUE(models().hasInstalled());
    EXPECT_FALSE(models().isBusy());
    EXPECT_EQ(models().downloadText(), QString());
}

TEST_F(SpeechModelsOnScreen, aRowNeverFallsBackBetweenTheEndOfADownloadAndWhatIsFound) {
    beginDownload();
    std::vector<std::string> actions;
    QObject::connect(models().rows(), &QAbstractItemModel::dataChanged, models().rows(),
                     [&] { actions.push_back(action("base")); });
    gate_.open();
    runUntil([this] { return row("base").installed; });
    EXPECT_EQ(std::ranges::count(actions, "Install"), 0);
    EXPECT_EQ(std::ranges::count(actions, "Resume"), 0);
}

TEST_F(SpeechModelsOnScreen, whatWasStoppedCanBeResumedOrDiscarded) {
    beginDownload();
    act("base");
    EXPECT_EQ(progress("base"), "Stopping…");
    runUntil([this] { return row("base").stopped; });
    EXPECT_EQ(progress("base"), "Stopped at 37% · 31 MB of 82 MB");
    EXPECT_EQ(action("base"), "Resume");
    EXPECT_TRUE(models().problem().isEmpty()) << "a stop is no failure";
    EXPECT_FALSE(models().isBusy());

    models().discard(QStringLiteral("base"));
    runUntil([this] { return !row("base").stopped; });
    EXPECT_EQ(action("base"), "Install");

    gate_.open();
    act("base");
    runUntil([this] { return row("base").installed; });
}

TEST_F(SpeechModelsOnScreen, theStagesOfADownloadHaveTheirWords) {
    const SpeechModelOffer offer = ModelsScript::offer("base", "Whisper base", 1000, 1000, 1);
    RunningDownload running;
    const auto text = [&] { return speechModelRow(offer, false, &running).progressText.toStdString(); };
    EXPECT_EQ(text(), "Connecting…");
    running.report = DownloadProgress();
    EXPECT_EQ(text(), "Connecting…");
    running.report->totalBytes = 1000;
    running.report->receivedBytes = 500;
    running.report->stage = DownloadStage::waiting;
    EXPECT_EQ(text(), "50% · connection lost, trying again…");
    running.report->stage = DownloadStage::verifying;
    EXPECT_EQ(text(), "Checking what is here already…");
    running.report->stage = DownloadStage::downloading;
    EXPECT_EQ(text(), "50%");
    running.isStopping = true;
    EXPECT_EQ(text(), "Stopping…");
}

TEST_F(SpeechModelsOnScreen, aFailureIsOneSentenceAndTheNextAttemptTakesItAway) {
    modelsScript_->download = [](const auto&, const auto&, const auto&) {
        throw std::runtime_error("There is no connection to the server.");
    };
    look();
    act("base");
    runUntil([this] { return action("base") == "Install"; });
    EXPECT_EQ(models().problem(), QStringLiteral("There is no connection to the server."));
    act("tiny");
    EXPECT_EQ(models().problem(), QString());
    runUntil([this] { return action("tiny") == "Install"; });
}

TEST_F(SpeechModelsOnScreen, twoModelsCanBeDownloadedAtOnce) {
    beginDownload();
    act("tiny");
    EXPECT_EQ(action("tiny"), "Stop");
    act("tiny");
    runUntil([this] { return row("tiny").stopped; });
    EXPECT_TRUE(row("base").downloading);
    EXPECT_TRUE(models().isDownloading());
    gate_.open();
    runUntil([this] { return row("base").installed; });
}

TEST_F(SpeechModelsOnScreen, theOneInUseIsChosenAtOnceAndFallsBackWhenItCantBeKept) {
    modelsScript_->install("tiny");
    modelsScript_->install("base");
    look();
    EXPECT_TRUE(row("tiny").inUse);
    models().use(QStringLiteral("base"));
    EXPECT_TRUE(row("base").inUse);
    EXPECT_FALSE(row("tiny").inUse);
    runUntil([this] { return modelsScript_->calls() == std::vector<std::string>{"use base"}; });
    modelsScript_->failChanges("The choice can't be kept.");
    models().use(QStringLiteral("tiny"));
    runUntil([this] { return row("base").inUse && !models().problem().isEmpty(); });
    EXPECT_EQ(models().problem(), QStringLiteral("The choice can't be kept."));
}

TEST_F(SpeechModelsOnScreen, theirOwnCanBeRemovedButNotTheSystems) {
    modelsScript_->install("tiny");
    modelsScript_->install("base", false);
    look();
    EXPECT_EQ(action("base"), "");
    EXPECT_TRUE(row("base").detail.endsWith(QStringLiteral(" · for all users")));
    EXPECT_EQ(row("tiny").removalText, QStringLiteral("It can be installed again at any time."));
    EXPECT_EQ(action("tiny"), "Remove");
    models().remove(QStringLiteral("tiny"));
    runUntil([this] { return action("tiny") == "Install"; });
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"remove tiny"});
}

TEST_F(SpeechModelsOnScreen, whatCanNotBeUsedSaysWhyAndIsGotAgainOrRemoved) {
    modelsScript_->damage("base", "“ggml-base.bin” is cut off.");
    modelsScript_->damage("tiny", "“ggml-tiny.bin” is damaged.", false);
    look();
    EXPECT_EQ(row("base").detail, QStringLiteral("“ggml-base.bin” is cut off."));
    EXPECT_TRUE(row("base").faulty);
    EXPECT_FALSE(row("base").installed);
    EXPECT_EQ(action("base"), "Install again");
    EXPECT_EQ(row("base").secondText, QStringLiteral("Remove"));
    EXPECT_EQ(row("base").secondName, QStringLiteral("Remove the file of Whisper base"));
    EXPECT_EQ(action("tiny"), "Install again");
    EXPECT_EQ(row("tiny").secondText, QString()) << "it is the system's";
    EXPECT_FALSE(row("tiny").removes);
    EXPECT_FALSE(models().hasInstalled());
    EXPECT_TRUE(models().problem().isEmpty()) << "the row says it";
    models().remove(QStringLiteral("base"));
    runUntil([this] { return action("base") == "Install"; });
    act("tiny");
    runUntil([this] { return row("tiny").installed; });
    EXPECT_EQ(modelsScript_->calls(), (std::vector<std::string>{"remove base", "download tiny"}));
}

TEST_F(SpeechModelsOnScreen, aFileThatNobodyHasAgainCanOnlyBeRemoved) {
    modelsScript_->change([](auto& found) {
        found.models.push_back(ModelsScript::offer("mine", "ggml-mine.bin", 0, 0, 0));
        found.models.back().fault = "“ggml-mine.bin” is no model.";
        found.models.back().isListed = false;
        found.models.back().isOwn = true;
    });
    look();
    EXPECT_EQ(action("mine"), "Remove");
    EXPECT_TRUE(row("mine").removes);
    EXPECT_EQ(row("mine").secondText, QString());
    act("mine");
    EXPECT_FALSE(models().isDownloading()) << "there is nowhere to download it from";
}

TEST_F(SpeechModelsOnScreen, theProgressOfGettingItAgainTakesThePlaceOfTheFault) {
    modelsScript_->damage("base", "“ggml-base.bin” is cut off.");
    beginDownload();
    EXPECT_TRUE(row("base").downloading);
    EXPECT_FALSE(row("base").faulty);
    act("base");
    runUntil([this] { return row("base").stopped; });
    EXPECT_EQ(action("base"), "Resume");
    EXPECT_EQ(row("base").secondText, QStringLiteral("Discard"));
    EXPECT_FALSE(row("base").removes);
}

TEST_F(SpeechModelsOnScreen, aChosenFileIsCopiedWithProgress) {
    modelsScript_->add = [this](const auto& report, const auto& stop) {
        report(0.42);
        gate_.pass(stop);
    };
    look();
    panels_.answer = "/somewhere/ggml-mine.bin";
    models().chooseFile();
    EXPECT_EQ(
        panels_.requests.back(),
        (OpenPanelRequest{"Choose a Speech Model", {{"application/octet-stream", "bin", "Speech model"}}}));
    runUntil([this] { return models().addingFraction() > 0.4; });
    EXPECT_EQ(models().addingText(), QStringLiteral("Copying ggml-mine.bin… 42%"));
    EXPECT_TRUE(models().isBusy());
    EXPECT_FALSE(models().acceptsDrop({QUrl::fromLocalFile(QStringLiteral("/another"))})) << "one at a time";
    gate_.open();
    runUntil([this] { return models().rows()->rowCount() == 5; });
    EXPECT_EQ(models().addingText(), QString());
    EXPECT_EQ(row("mine").name, QStringLiteral("Whisper mine"));
    EXPECT_TRUE(row("mine").inUse);
    EXPECT_EQ(row("mine").removalText, QStringLiteral("Only a file that you have can bring it back."));
}

TEST_F(SpeechModelsOnScreen, aModelThatFindsVoicesIsShownAndCanOnlyBeRemoved) {
    modelsScript_->install("tiny");
    modelsScript_->addVoices();
    look();
    EXPECT_EQ(row("silero").name, QStringLiteral("Voice model silero"));
    EXPECT_EQ(row("silero").detail, QStringLiteral("886 kB · finds voices, used beside a speech model"));
    EXPECT_FALSE(row("silero").installed) << "nothing to choose";
    EXPECT_FALSE(row("silero").faulty);
    EXPECT_EQ(action("silero"), "Remove");
    EXPECT_TRUE(row("silero").removes);
    EXPECT_EQ(row("silero").secondText, QString());
    EXPECT_EQ(row("silero").removalText, QStringLiteral("Only a file that you have can bring it back."));
    act("silero");
    EXPECT_FALSE(models().isDownloading());
    models().remove(QStringLiteral("silero"));
    runUntil([this] { return models().rows()->rowCount() == 4; });
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"remove silero"});
}

TEST_F(SpeechModelsOnScreen, theSystemsModelThatFindsVoicesIsOnlyShown) {
    modelsScript_->addVoices(false);
    look();
    EXPECT_TRUE(row("silero").detail.endsWith(QStringLiteral(" · for all users")));
    EXPECT_EQ(action("silero"), "");
}

TEST_F(SpeechModelsOnScreen, aModelThatFindsVoicesIsNoneThatWasMissed) {
    script_->recognise = [](const auto&, double, const Locale& locale, const auto&, const auto&) -> Words {
        throw SpeechError::recognizerUnavailable(locale);
    };
    loadVideo();
    transcribe();
    ASSERT_TRUE(view_->modelWouldHelp());
    QSignalSpy arrived(&models(), &SpeechModels::arrived);
    modelsScript_->addsVoices = true;
    models().addDropped({QUrl::fromLocalFile(QStringLiteral("/somewhere/ggml-silero.bin"))});
    runUntil([this] { return models().rows()->rowCount() == 5 && !models().isBusy(); });
    EXPECT_FALSE(models().hasInstalled());
    EXPECT_EQ(arrived.size(), 0);
    EXPECT_TRUE(view_->modelWouldHelp());

    modelsScript_->addsVoices = false;
    models().addDropped({QUrl::fromLocalFile(QStringLiteral("/somewhere/ggml-mine.bin"))});
    runUntil([this] { return models().rows()->rowCount() == 6; });
    EXPECT_EQ(arrived.size(), 1);
    EXPECT_FALSE(view_->modelWouldHelp());
    EXPECT_FALSE(view_->hasError());
}

TEST_F(SpeechModelsOnScreen, nothingHappensWhenNoFileIsChosen) {
    look();
    models().chooseFile();
    EXPECT_FALSE(models().isBusy());
    EXPECT_TRUE(modelsScript_->calls().empty());
}

TEST_F(SpeechModelsOnScreen, aPanelThatIsOpenIsNotOpenedAgain) {
    look();
    panels_.meanwhile = [this] { models().chooseFile(); };
    models().chooseFile();
    EXPECT_EQ(panels_.requests.size(), 1u);
}

TEST_F(SpeechModelsOnScreen, theScreenMayGoWhileThePanelIsOpen) {
    panels_.answer = "/somewhere/ggml-mine.bin";
    panels_.meanwhile = [this] { view_.reset(); };
    models().chooseFile();
    EXPECT_TRUE(modelsScript_->calls().empty());
}

TEST_F(SpeechModelsOnScreen, aDroppedFileIsAddedAndSeveralAreRefused) {
    look();
    const QUrl one = QUrl::fromLocalFile(QStringLiteral("/somewhere/ggml-ünï.bin"));
    EXPECT_TRUE(models().acceptsDrop({one}));
    EXPECT_FALSE(models().acceptsDrop({QUrl(QStringLiteral("https://example.org/ggml.bin"))}));
    models().addDropped({one, one});
    EXPECT_EQ(models().problem(), QStringLiteral("Please drop one model file at a time."));
    models().addDropped({one});
    runUntil([this] { return models().rows()->rowCount() == 5; });
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"add /somewhere/ggml-ünï.bin"});
    EXPECT_EQ(models().problem(), QString());
}

TEST_F(SpeechModelsOnScreen, aFileThatIsNoModelIsRefusedInOneSentence) {
    modelsScript_->add = [](const auto&, const auto&) { throw std::runtime_error("This is no model."); };
    look();
    models().addDropped({QUrl::fromLocalFile(QStringLiteral("/somewhere/talk.mp4"))});
    runUntil([this] { return !models().problem().isEmpty(); });
    EXPECT_EQ(models().problem(), QStringLiteral("This is no model."));
    EXPECT_EQ(models().rows()->rowCount(), 4);
    EXPECT_FALSE(models().isBusy());
}

TEST_F(SpeechModelsOnScreen, aLookThatFailsSaysSoAndTheNextOneMayWork) {
    modelsScript_->failLooks("Nobody has named a data folder.");
    look();
    EXPECT_EQ(models().problem(), QStringLiteral("Nobody has named a data folder."));
    EXPECT_EQ(models().rows()->rowCount(), 0);
    modelsScript_->failLooks({});
    models().look();
    runUntil([this] { return models().rows()->rowCount() == 4; });
}

TEST_F(SpeechModelsOnScreen, whatCouldNotBeUsedIsSaidUnlessSomethingWentWrongSince) {
    modelsScript_->change([](auto& found) { found.notice = "The list of models is damaged."; });
    modelsScript_->download = [](const auto&, const auto&, const auto&) { throw std::runtime_error("No."); };
    look();
    EXPECT_EQ(models().problem(), QStringLiteral("The list of models is damaged."));
    act("base");
    runUntil([this] { return action("base") == "Install"; });
    EXPECT_EQ(models().problem(), QStringLiteral("No."));
}

TEST_F(SpeechModelsOnScreen, theFolderIsShownFromTheHomeOn) {
    modelsScript_->change([](auto& found) {
        found.folder =
            QFile::encodeName(QDir::homePath()).toStdString() + "/.local/share/korvane/models/whisper";
    });
    look();
    EXPECT_EQ(models().folderText(), QStringLiteral("~/.local/share/korvane/models/whisper"));
}

TEST_F(SpeechModelsOnScreen, destroyingTheScreenStopsADownload) {
    beginDownload();
    view_.reset();
    EXPECT_TRUE(gate_.isReached());
}

TEST_F(SpeechModelsOnScreen, rowsThatStayAreNotMadeAnew) {
    look();
    QSignalSpy reset(models().rows(), &QAbstractItemModel::modelReset);
    QSignalSpy removed(models().rows(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(models().rows(), &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(models().rows(), &QAbstractItemModel::dataChanged);
    modelsScript_->change([](auto& found) {
        found.models.erase(found.models.begin());
        found.models.push_back(ModelsScript::offer("mine", "Whisper mine", 1, 1, 1));
        found.models[1].isInstalled = true;
    });
    models().look();
    runUntil([&] { return !changed.isEmpty(); });
    EXPECT_TRUE(reset.isEmpty());
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(inserted.size(), 1);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(row("small").installed, true);
}

// What it means for the rest of the screen.

TEST_F(SpeechModelsOnScreen, aLanguageThatNothingRecognisesOffersAModelBesideTheErrorAsItIs) {
    script_->recognise = [](const auto&, double, const Locale& locale, const auto&, const auto&) -> Words {
        throw SpeechError::recognizerUnavailable(locale);
    };
    loadVideo();
    EXPECT_FALSE(view().modelWouldHelp());
    transcribe();
    EXPECT_EQ(view().errorText(), QStringLiteral("Speech recognizer is not available for 'ru-RU'."));
    EXPECT_TRUE(view().modelWouldHelp());
    record();
    view().startTranscription();
    EXPECT_FALSE(view().modelWouldHelp()) << "with the error goes the offer";
    runUntilIdle();
    EXPECT_EQ(std::ranges::count(log_, "error Speech recognizer is not available for 'ru-RU'."), 1);
    EXPECT_TRUE(view().modelWouldHelp());
}

TEST_F(SpeechModelsOnScreen, noOtherErrorOffersAModel) {
    script_->recognise = [](const auto&, double, const auto&, const auto&, const auto&) -> Words {
        throw SpeechError::permissionDenied();
    };
    loadVideo();
    transcribe();
    EXPECT_TRUE(view().hasError());
    EXPECT_FALSE(view().modelWouldHelp());
}

TEST_F(SpeechModelsOnScreen, theErrorGoesWhenAModelArrivesAndNoOtherErrorDoes) {
    script_->recognise = [](const auto&, double, const Locale& locale, const auto&, const auto&) -> Words {
        throw SpeechError::recognizerUnavailable(locale);
    };
    loadVideo();
    transcribe();
    look();
    act("tiny");
    runUntil([this] { return row("tiny").installed; });
    EXPECT_FALSE(view().hasError());
    EXPECT_FALSE(view().modelWouldHelp());
    EXPECT_TRUE(view().canTranscribe());

    peer().setError("Another one.");
    act("base");
    runUntil([this] { return row("base").installed; });
    EXPECT_EQ(view().errorText(), QStringLiteral("Another one."));
}

TEST_F(SpeechModelsOnScreen, closingAsksWhileAModelIsDownloadedAndSaysThatItsPartIsKept) {
    look();
    EXPECT_FALSE(view().closeQuestionNeeded());
    beginDownload();
    EXPECT_TRUE(view().closeQuestionNeeded());
    EXPECT_FALSE(view().isAnyActive()) << "everything else can be done meanwhile";
    EXPECT_EQ(view().closeQuestionText(),
              QStringLiteral("A speech model is still being downloaded. What has arrived is kept, and the "
                             "download can be resumed."));
    view().cancelEverything();
    EXPECT_FALSE(view().closeQuestionNeeded());
    runUntil([this] { return row("base").stopped; });
    EXPECT_FALSE(view().closeQuestionNeeded());
    peer().setExporting(true);
    EXPECT_TRUE(view().closeQuestionNeeded()) << "what was agreed to is over";
    EXPECT_EQ(
        view().closeQuestionText(),
        QStringLiteral("Something is still running. Closing stops it and leaves nothing half-written."));
}

}  // namespace
}  // namespace korvane
