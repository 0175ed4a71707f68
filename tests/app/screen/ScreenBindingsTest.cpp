// What the cards show follows the state of the screen, and what they are told to do reaches it.
#include <QAccessible>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include "tests/app/ScreenFixture.h"
#include "ui/controls/Theme.h"
#include "ui/words/WordFlow.h"

namespace korvane {
namespace {

class ScreenBindings : public Screen {
  protected:
    ScreenBindings() {
        engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QObject::connect(&engine_, &QQmlEngine::warnings, [](const QList<QQmlError>& errors) {
            for (const auto& error : errors)
                ADD_FAILURE() << error.toString().toStdString();
        });
        QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Korvane/App/Screen.qml")));
        screen_.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{QStringLiteral("view"), QVariant::fromValue(view_.get())}})));
        if (!screen_)
            throw std::runtime_error(component.errorString().toStdString());
        screen_->setParentItem(window_.contentItem());
        resize(1156, 752);
        window_.show();
        window_.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    ~ScreenBindings() override { screen_.reset(); }

    /// As the window does it.
    void resize(int width, int height) {
        window_.resize(width, height);
        screen_->setSize(QSizeF(width, height));
    }
    QQuickItem& named(const char* objectName) const {
        auto* found = screen_->findChild<QQuickItem*>(QString::fromLatin1(objectName));
        if (!found)
            throw std::runtime_error(std::string("nothing is called ") + objectName);
        return *found;
    }
    void click(const QQuickItem& item) {
        const QPointF middle(item.width() / 2, item.height() / 2);
        QTest::mouseClick(&window_, Qt::LeftButton, {}, item.mapToScene(middle).toPoint());
    }
    std::string textOf(const char* objectName) const {
        return named(objectName).property("text").toString().toStdString();
    }
    static QQuickItem& ancestorWith(QQuickItem& item, const char* property) {
        QQuickItem* found = &item;
        while (found && !found->property(property).isValid())
            found = found->parentItem();
        if (!found)
            throw std::runtime_error(std::string("nothing above has ") + property);
        return *found;
    }
    QQuickItem& errorCard() const { return ancestorWith(named("errorText"), "shown"); }
    QQuickItem& progressCard() const { return ancestorWith(named("progressBar"), "dotColor"); }
    void showThreeWords() {
        loadVideo();
        peer().setWords(wordsOf({"one", "two", "three"}));
    }
    double filled() const { return named("progressBar").property("fillWidth").toDouble(); }
    double whole() const { return named("progressBar").width(); }

    /// Each of the three operations, as it begins and ends.
    static std::vector<void (ContentViewPeer::*)(bool)> operations() {
        return {&ContentViewPeer::setProcessing, &ContentViewPeer::setBuildingPreview,
                &ContentViewPeer::setExporting};
    }

  private:
    QQmlEngine engine_;
    QQuickWindow window_;

  protected:
    std::unique_ptr<QQuickItem> screen_;
};

TEST_F(ScreenBindings, languageAndLoadingAreOffWhileAnyOperationIsActive) {
    for (const auto set : operations()) {
        EXPECT_TRUE(named("languagePicker").isEnabled());
        EXPECT_TRUE(named("loadVideo").isEnabled());
        (peer().*set)(true);
        EXPECT_FALSE(named("languagePicker").isEnabled());
        EXPECT_FALSE(named("loadVideo").isEnabled());
        click(named("loadVideo"));
        EXPECT_TRUE(panels_.requests.empty());
        (peer().*set)(false);
    }
    click(named("loadVideo"));
    EXPECT_EQ(panels_.requests.size(), 1u);
}

TEST_F(ScreenBindings, transcribingNeedsAVideoAndAnIdleScreen) {
    EXPECT_FALSE(named("transcribe").isEnabled());
    loadVideo();
    EXPECT_TRUE(named("transcribe").isEnabled());
    for (const auto set : operations()) {
        (peer().*set)(true);
        EXPECT_FALSE(named("transcribe").isEnabled());
        (peer().*set)(false);
        EXPECT_TRUE(named("transcribe").isEnabled());
    }
}

TEST_F(ScreenBindings, aTranscriptionRunsByItsButtonsAlone) {
    Gate gate;
    script_->recognise = [&](const auto&, double, const auto&, const auto&, const std::stop_token& stop) {
        gate.pass(stop);
        return wordsOf({"one", "two"});
    };
    loadVideo();
    EXPECT_FALSE(named("stopTranscription").isVisible());
    click(named("transcribe"));
    runUntil([&] { return gate.isReached(); });
    EXPECT_TRUE(named("stopTranscription").isVisible());
    click(named("stopTranscription"));
    runUntilIdle();
    EXPECT_EQ(textOf("statusText"), "Cancelled");
    EXPECT_FALSE(named("stopTranscription").isVisible());
    gate.open();
    click(named("transcribe"));
    runUntilIdle();
    EXPECT_EQ(textOf("statusText"), "Transcribed — 2 words");
    EXPECT_EQ(textOf("title"), "Words — 2 tokens");
}

TEST_F(ScreenBindings, theTranscriptionsStopIsThereForNoOtherOperation) {
    peer().setBuildingPreview(true);
    EXPECT_FALSE(named("stopTranscription").isVisible());
    peer().setBuildingPreview(false);
    peer().setExporting(true);
    EXPECT_FALSE(named("stopTranscription").isVisible());
}

TEST_F(ScreenBindings, thePickedLanguageCounts) {
    named("languagePicker").forceActiveFocus(Qt::TabFocusReason);
    ASSERT_TRUE(QMetaObject::invokeMethod(&named("languagePicker"), "picked", Q_ARG(int, 2)));
    EXPECT_EQ(view().selectedLanguageIndex(), 2);
    EXPECT_EQ(named("languagePicker").property("currentIndex").toInt(), 2);
    view().selectLanguage(1);
    EXPECT_EQ(named("languagePicker").property("currentIndex").toInt(), 1);
}

TEST_F(ScreenBindings, tokensAllAndNoneAnswerOnlyWhileNothingIsActive) {
    showThreeWords();
    auto& flow = dynamic_cast<WordFlow&>(named("flow"));
    runUntil([&] { return flow.isSettled() && flow.tokenOf(1); });
    for (const auto set : operations()) {
        peer().setSelected({0, 1});
        (peer().*set)(true);
        // The state would refuse them too, but nobody shall be asked to try.
        EXPECT_FALSE(flow.isReactive());
        EXPECT_FALSE(named("all").isEnabled());
        EXPECT_FALSE(named("none").isEnabled());
        click(*flow.tokenOf(1));
        click(named("all"));
        click(named("none"));
        EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{0, 1}));
        (peer().*set)(false);
        click(*flow.tokenOf(1));
        EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{0}));
        click(named("all"));
        EXPECT_EQ(view().selectedWordIndices(), upTo(3));
        click(named("none"));
        EXPECT_EQ(view().selectedWordIndices(), std::set<int>{});
    }
}

TEST_F(ScreenBindings, tokensAndControlsSayThatTheyAreOffWhileSomethingIsActive) {
    showThreeWords();
    auto& flow = dynamic_cast<WordFlow&>(named("flow"));
    runUntil([&] { return flow.isSettled() && flow.tokenOf(1); });
    const auto isOff = [](QQuickItem& item) {
        return QAccessible::queryAccessibleInterface(&item)->state().disabled;
    };
    for (const bool active : {false, true, false}) {
        peer().setProcessing(active);
        EXPECT_EQ(isOff(*flow.tokenOf(1)), active);
        EXPECT_EQ(isOff(named("all")), active);
        EXPECT_EQ(isOff(named("none")), active);
        EXPECT_EQ(isOff(named("languagePicker")), active);
        EXPECT_EQ(isOff(named("loadVideo")), active);
    }
}

TEST_F(ScreenBindings, theErrorCardIsThereWhileThereIsAnError) {
    EXPECT_EQ(errorCard().height(), 0);
    EXPECT_FALSE(errorCard().isVisible());
    const double words = named("title").mapToScene({}).y();
    peer().setError("It did not work.");
    EXPECT_EQ(textOf("errorText"), "It did not work.");
    runUntil([&] { return errorCard().opacity() == 1 && errorCard().height() >= 40; });
    EXPECT_TRUE(errorCard().isVisible());
    EXPECT_GT(named("title").mapToScene({}).y(), words + 30);
    peer().dropError();
    runUntil([&] { return errorCard().height() == 0; });
    EXPECT_FALSE(errorCard().isVisible());
    EXPECT_EQ(named("title").mapToScene({}).y(), words);
}

TEST_F(ScreenBindings, thePhaseIsShownBetweenTheBeginningAndTheEndOnly) {
    peer().setProcessing(true);
    EXPECT_FALSE(named("phaseText").isVisible());
    peer().setProgress(0.01);
    EXPECT_TRUE(named("phaseText").isVisible());
    EXPECT_EQ(textOf("phaseText"), "Extracting audio");
    peer().setProgress(0.5);
    EXPECT_EQ(textOf("phaseText"), "Transcribing");
    EXPECT_EQ(textOf("percentText"), "50%");
    peer().setProgress(1.0);
    EXPECT_FALSE(named("phaseText").isVisible());
}

TEST_F(ScreenBindings, theTimeLeftIsShownWhileThereIsAGuess) {
    peer().setProcessing(true);
    peer().setStart(now_ - std::chrono::seconds(42));
    EXPECT_FALSE(named("etaText").isVisible());
    peer().setProgress(0.5);
    EXPECT_TRUE(named("etaText").isVisible());
    EXPECT_EQ(textOf("etaText"), "~42s left");
    peer().setProcessing(false);
    EXPECT_FALSE(named("etaText").isVisible());
}

TEST_F(ScreenBindings, theBarFollowsTheProgressAndTheWidthOfTheWindow) {
    EXPECT_EQ(filled(), 0);
    peer().setProgress(0.001);
    EXPECT_EQ(filled(), 10);
    peer().setProgress(0.5);
    EXPECT_EQ(filled(), view().barWidth(whole()));
    EXPECT_EQ(filled(), whole() / 2);
    const double before = whole();
    for (const int width : {936, 1896, 1156}) {
        resize(width, 752);
        EXPECT_EQ(filled(), view().barWidth(whole())) << width;
        EXPECT_EQ(filled(), whole() / 2) << width;
        EXPECT_EQ(whole() == before, width == 1156);
    }
    peer().setProgress(1.0);
    EXPECT_EQ(filled(), whole());
    peer().setProgress(0.0);
    EXPECT_EQ(filled(), 0);
}

TEST_F(ScreenBindings, theDotHasTheColourOfTheState) {
    const auto color = [&] { return progressCard().property("dotColor").value<QColor>(); };
    EXPECT_EQ(color(), Theme::white(0.25));
    peer().setProcessing(true);
    EXPECT_EQ(color(), Theme::accent());
    peer().setProgress(0.4);
    peer().setProcessing(false);
    EXPECT_EQ(color(), Theme::orange());
    peer().setProgress(1.0);
    EXPECT_EQ(color(), Theme::successGreen());
}

TEST_F(ScreenBindings, theFileCardNamesTheVideo) {
    const auto& card = ancestorWith(named("loadVideo"), "fileName");
    EXPECT_EQ(card.property("fileName").toString(), QStringLiteral("No file selected"));
    loadVideo();
    EXPECT_EQ(card.property("fileName").toString(), QStringLiteral("clip.mp4"));
    EXPECT_TRUE(card.property("hasVideo").toBool());
}

}  // namespace
}  // namespace korvane
