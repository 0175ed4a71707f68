#include <QDropEvent>
#include <QMimeData>

#include "tests/app/reel/ShownScreen.h"

namespace korvane {
namespace {

class ModelsSheet : public ShownScreen {
  protected:
    ~ModelsSheet() override { gate_->open(); }

    bool until(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 5000); }
    bool isOpen() const { return find("modelsSheet") != nullptr; }
    void open() {
        click("speechModels");
        ASSERT_TRUE(until([this] { return isOpen() && hasKeyboard("closeModels"); }));
        ASSERT_TRUE(
            until([this] { return find("modelsSheet")->parentItem()->parentItem()->opacity() == 1; }));
    }
    void openByKeys() {
        find("speechModels")->forceActiveFocus(Qt::TabFocusReason);
        key(Qt::Key_Return);
        ASSERT_TRUE(until([this] { return isOpen() && hasKeyboard("closeModels"); }));
    }
    bool isClosed() {
        return until([this] { return !isOpen(); });
    }
    std::string textOf(const char* name) const {
        return find(name) ? find(name)->property("text").toString().toStdString() : "nothing is there";
    }
    bool showsFocus(const char* name) const {
        return hasKeyboard(name) && find(name)->property("visualFocus").toBool();
    }
    void tabTo(const char* name) {
        for (int i = 0; i < 40 && !hasKeyboard(name); ++i)
            key(Qt::Key_Tab);
        ASSERT_TRUE(hasKeyboard(name)) << name;
    }
    bool isInSheet(const QQuickItem* item) const {
        while (item && item != find("modelsSheet"))
            item = item->parentItem();
        return item != nullptr;
    }
    void failForWantOfARecogniser() {
        script_->recognise = [](const auto&, double, const Locale& locale, const auto&,
                                const auto&) -> Words { throw SpeechError::recognizerUnavailable(locale); };
        loadVideo();
        transcribe();
        ASSERT_TRUE(until([this] { return find("installModel") && placeOf("installModel").height() > 30; }));
        QTest::qWait(250);  // the card has opened
    }
    void downloadsWait() {
        modelsScript_->download = [gate = gate_, models = modelsScript_](
                                      const std::string& id, const auto& report, const auto& stop) {
            models->setPart(id, 31'000'000);
            report(ModelsScript::report(31'000'000, 81'768'585));
            gate->pass(stop);
        };
    }
    /// \return whether the window takes what hovers over it.
    bool dragOver(const QMimeData& data, QPoint place) {
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window_.get(), &enter);
        return enter.isAccepted();
    }
    void drop(const QMimeData& data, QPoint place) {
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window_.get(), &event);
    }

    std::shared_ptr<Gate> gate_ = std::make_shared<Gate>();
};

TEST_F(ModelsSheet, isOfferedBesideTheErrorAndQuietlyAllTheTime) {
    EXPECT_TRUE(find("speechModels"));
    EXPECT_FALSE(find("installModel"));
    failForWantOfARecogniser();
    EXPECT_EQ(textOf("errorText"), "Speech recognizer is not available for 'ru-RU'.");
    EXPECT_LT(placeOf("errorText").right(), placeOf("installModel").left());
    click("installModel");
    EXPECT_TRUE(until([this] { return isOpen(); }));
}

TEST_F(ModelsSheet, anyOtherErrorHasAllTheRoomOfItsCard) {
    peer().setError("Another one.");
    ASSERT_TRUE(until([this] { return find("errorText") != nullptr; }));
    EXPECT_FALSE(find("installModel"));
}

TEST_F(ModelsSheet, theKeyboardStaysInsideAndIsGivenBack) {
    openByKeys();
    EXPECT_TRUE(showsFocus("closeModels"));
    std::set<const QQuickItem*> reached;
    for (int i = 0; i < 30; ++i) {
        key(Qt::Key_Tab);
        ASSERT_TRUE(isInSheet(window_->activeFocusItem())) << i;
        reached.insert(window_->activeFocusItem());
    }
    EXPECT_EQ(reached.size(), 6u) << "four models, a file, the cross";
    key(Qt::Key_Escape);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(showsFocus("speechModels"));
    key(Qt::Key_Space);
    EXPECT_TRUE(until([this] { return isOpen(); }));
}

TEST_F(ModelsSheet, whoOpensAndPressesEnterAtOnceDownloadsNothing) {
    openByKeys();
    key(Qt::Key_Return);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(modelsScript_->calls().empty());
}

TEST_F(ModelsSheet, aModelIsInstalledAndStoppedByOneButtonThatKeepsTheKeyboard) {
    downloadsWait();
    openByKeys();
    tabTo("act base");
    EXPECT_EQ(textOf("act base"), "Install");
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return textOf("progressText") == "37% · 4.2 MB/s · 13 s left"; }));
    EXPECT_EQ(textOf("act base"), "Stop");
    EXPECT_TRUE(hasKeyboard("act base"));
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return textOf("act base") == "Resume"; }));
    EXPECT_TRUE(hasKeyboard("act base"));
    EXPECT_EQ(textOf("progressText"), "Stopped at 37% · 31 MB of 82 MB");
    gate_->open();
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return textOf("act base") == "Remove"; }));
    EXPECT_TRUE(find("use base")->property("checked").toBool());
}

TEST_F(ModelsSheet, aDownloadGoesOnWhileTheSheetIsClosedAndIsSeenAgain) {
    downloadsWait();
    open();
    click("act base");
    ASSERT_TRUE(until([this] { return textOf("act base") == "Stop"; }));
    key(Qt::Key_Escape);
    ASSERT_TRUE(isClosed());
    EXPECT_TRUE(view_->speechModels()->isDownloading());
    open();
    EXPECT_EQ(textOf("act base"), "Stop");
    EXPECT_EQ(textOf("progressText"), "37% · 4.2 MB/s · 13 s left");
}

TEST_F(ModelsSheet, removingAsksOnce) {
    modelsScript_->install("base");
    open();
    click("act base");
    ASSERT_TRUE(hasKeyboard("keep base"));
    key(Qt::Key_Escape);
    EXPECT_TRUE(isOpen()) << "Escape answers the question first";
    EXPECT_TRUE(hasKeyboard("act base"));
    EXPECT_TRUE(modelsScript_->calls().empty());
    click("act base");
    click("remove base");
    ASSERT_TRUE(until([this] { return textOf("act base") == "Install"; }));
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"remove base"});
    EXPECT_FALSE(find("use base"));
}

TEST_F(ModelsSheet, aDamagedModelIsRemovedOrGotAgain) {
    modelsScript_->damage("base", "“ggml-base-q8_0.bin” is cut off: it isn’t all of a model.");
    modelsScript_->damage("tiny", "“ggml-tiny-q8_0.bin” is damaged.");
    open();
    EXPECT_EQ(textOf("act base"), "Install again");
    click("second base");
    ASSERT_TRUE(hasKeyboard("keep base"));
    click("remove base");
    ASSERT_TRUE(until([this] { return textOf("act base") == "Install"; }));
    tabTo("act tiny");
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return textOf("act tiny") == "Remove"; }));
    EXPECT_EQ(modelsScript_->calls(), (std::vector<std::string>{"remove base", "download tiny"}));
}

TEST_F(ModelsSheet, aModelThatFindsVoicesHasNoDotAndGoesWhenItIsToldTo) {
    modelsScript_->install("tiny");
    modelsScript_->addVoices();
    open();
    EXPECT_TRUE(find("use tiny"));
    EXPECT_FALSE(find("use silero"));
    EXPECT_EQ(textOf("act silero"), "Remove");
    click("act silero");
    ASSERT_TRUE(hasKeyboard("keep silero"));
    click("remove silero");
    EXPECT_TRUE(until([this] { return !find("act silero"); }));
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"remove silero"});
}

TEST_F(ModelsSheet, theModelInUseIsChosenByItsDot) {
    modelsScript_->install("tiny");
    modelsScript_->install("base");
    open();
    EXPECT_TRUE(find("use tiny")->property("checked").toBool());
    click("use base");
    EXPECT_TRUE(find("use base")->property("checked").toBool());
    EXPECT_FALSE(find("use tiny")->property("checked").toBool());
    tabTo("use tiny");
    key(Qt::Key_Space);
    EXPECT_TRUE(until([this] {
        return modelsScript_->calls() == std::vector<std::string>{"use base", "use tiny"};
    }));
    click("use tiny");
    EXPECT_TRUE(until([this] { return find("use tiny")->property("checked").toBool(); }))
        << "one is always chosen";
}

TEST_F(ModelsSheet, anErrorIsOneSentenceAndTheSheetGoesOn) {
    modelsScript_->download = [](const std::string& id, const auto&, const auto&) {
        if (id == "turbo")
            throw std::runtime_error("No room.");
    };
    open();
    click("act turbo");
    ASSERT_TRUE(until([this] { return find("modelProblem") != nullptr; }));
    EXPECT_EQ(textOf("modelProblem"), "No room.");
    EXPECT_TRUE(until([this] { return textOf("act turbo") == "Install"; }));
    click("act tiny");
    EXPECT_TRUE(until([this] { return textOf("act tiny") == "Remove"; }));
    EXPECT_FALSE(find("modelProblem"));
}

TEST_F(ModelsSheet, afterAnInstallTheErrorIsGoneAndTheKeyboardIsWithTranscribe) {
    failForWantOfARecogniser();
    find("installModel")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return isOpen() && hasKeyboard("closeModels"); }));
    tabTo("act tiny");
    key(Qt::Key_Space);
    ASSERT_TRUE(until([this] { return textOf("act tiny") == "Remove"; }));
    EXPECT_FALSE(view_->hasError());
    key(Qt::Key_Escape);
    ASSERT_TRUE(isClosed());
    EXPECT_TRUE(showsFocus("transcribe"));
    script_->recognise = [](const auto&, double, const auto&, const auto&, const auto&) {
        return wordsOf({"one"});
    };
    key(Qt::Key_Space);
    runUntilIdle();
    EXPECT_EQ(view_->statusText(), QStringLiteral("Transcribed — 1 word"));
}

TEST_F(ModelsSheet, closingTheWindowDuringADownloadAsksAndKeepsThePart) {
    downloadsWait();
    open();
    click("act base");
    ASSERT_TRUE(until([this] { return view_->closeQuestionNeeded(); }));
    window_->close();
    ASSERT_TRUE(until([this] { return find("closeQuestion") && hasKeyboard("keepWorking"); }));
    EXPECT_TRUE(isClosed()) << "one thing at a time";
    key(Qt::Key_Return);
    ASSERT_TRUE(until([this] { return !find("closeQuestion"); }));
    EXPECT_TRUE(hasKeyboard("speechModels"));
    EXPECT_TRUE(view_->speechModels()->isDownloading());
    EXPECT_TRUE(window_->isVisible());
    window_->close();
    ASSERT_TRUE(until([this] { return find("stopAndClose") != nullptr; }));
    click("stopAndClose");
    EXPECT_FALSE(window_->isVisible());
    EXPECT_TRUE(until([this] { return !view_->speechModels()->isBusy(); }));
}

TEST_F(ModelsSheet, aPressBesideItAndTheCrossCloseIt) {
    open();
    QTest::mouseClick(window_.get(), Qt::LeftButton, Qt::NoModifier, QPoint(40, window_->height() / 2));
    EXPECT_TRUE(isClosed());
    open();
    click("closeModels");
    EXPECT_TRUE(isClosed());
}

TEST_F(ModelsSheet, aModelFileMayBeDroppedAnywhereWhileItIsOpen) {
    open();
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(QStringLiteral("/somewhere/ggml-mine.bin"))});
    EXPECT_TRUE(dragOver(file, {30, 30}));
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(window_.get(), &leave);
    EXPECT_TRUE(dragOver(file, {window_->width() / 2, window_->height() / 2}));
    drop(file, {window_->width() / 2, window_->height() / 2});
    EXPECT_TRUE(until([this] { return find("act mine") != nullptr; }));
    EXPECT_EQ(modelsScript_->calls(), std::vector<std::string>{"add /somewhere/ggml-mine.bin"});
    EXPECT_FALSE(view_->hasVideo()) << "no video meant for the screen behind";
    EXPECT_FALSE(view_->hasError());
}

TEST_F(ModelsSheet, theFileIsChosenInThePanelAndNothingOpensTheOneForVideos) {
    open();
    QTest::keyClick(window_.get(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(panels_.requests.empty());
    panels_.answer = "/somewhere/ggml-mine.bin";
    click("chooseModelFile");
    EXPECT_EQ(panels_.requests.size(), 1u);
    EXPECT_TRUE(until([this] { return find("act mine") != nullptr; }));
}

TEST_F(ModelsSheet, fitsIntoTheSmallestWindowWithAnyNumberOfModels) {
    modelsScript_->change([](auto& found) {
        for (int i = 0; i < 12; ++i) {
            const std::string id = "more" + std::to_string(i);
            found.models.push_back(ModelsScript::offer(id, "Whisper " + id, 1'000'000, 1'000'000, 2));
        }
        found.notice = "The list of models is damaged.";
    });
    window_->setMinimumSize({});
    window_->resize(960, 680);
    openByKeys();
    const QRectF window(0, 0, 960, 680);
    EXPECT_TRUE(until([&] { return window.contains(placeOf("modelsSheet").adjusted(-20, -20, 20, 20)); }));
    EXPECT_TRUE(placeOf("modelsSheet").contains(placeOf("modelFolder")));
    tabTo("act more11");
    EXPECT_TRUE(placeOf("modelList").contains(placeOf("act more11"))) << "what has the keyboard is seen";
    tabTo("act tiny");
    EXPECT_TRUE(placeOf("modelList").contains(placeOf("act tiny")));
}

TEST_F(ModelsSheet, opensOnlyWhenThereIsSomethingToShow) {
    modelsScript_->failLooks("Nobody has named a data folder.");
    click("speechModels");
    ASSERT_TRUE(until([this] { return isOpen(); }));
    EXPECT_EQ(textOf("modelProblem"), "Nobody has named a data folder.");
    EXPECT_FALSE(find("act tiny"));
}

}  // namespace
}  // namespace korvane
