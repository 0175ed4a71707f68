#include "tests/app/reel/ShownScreen.h"

namespace korvane {
namespace {

class Closing : public ShownScreen {
  protected:
    ~Closing() override { gate_->open(); }

    void exportUntilStopped() {
        script_->write = [gate = gate_](const auto&, const auto&, const auto&, const auto&, const auto&,
                                        const auto& stop) { gate->pass(stop); };
        loadWords();
        showPreview();
        panels_.answer = folder_.path() / "reel.mp4";
        view_->exportReel();
        ASSERT_TRUE(view_->isExporting());
        gate_->waitUntilReached();
    }
    bool isAsked() { return find("closeQuestion") != nullptr; }

    std::shared_ptr<Gate> gate_ = std::make_shared<Gate>();
};

TEST_F(Closing, aWindowInWhichNothingRunsCloses) {
    window_->close();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(Closing, asksWhileSomethingRunsAndTheAnswerUnderEnterGoesOn) {
    exportUntilStopped();
    window_->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAsked() && hasKeyboard("keepWorking"); }));
    EXPECT_TRUE(window_->isVisible());
    key(Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isAsked(); }));
    EXPECT_TRUE(view_->isExporting());
    EXPECT_TRUE(window_->isVisible());

    window_->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isAsked(); })) << "the next attempt is another one";
    key(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isAsked(); }));
    EXPECT_TRUE(view_->isExporting());
}

TEST_F(Closing, stopAndCloseStopsTheExportAndCloses) {
    exportUntilStopped();
    window_->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAsked(); }));
    click("stopAndClose");
    EXPECT_FALSE(window_->isVisible());
    runUntilIdle();
    EXPECT_EQ(view_->statusText(), QStringLiteral("Export cancelled"));
}

TEST_F(Closing, theQuestionGoesWhenThereIsNothingLeftToStop) {
    exportUntilStopped();
    window_->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAsked(); }));
    gate_->open();
    runUntilIdle();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isAsked(); }));
    EXPECT_TRUE(window_->isVisible());
}

}  // namespace
}  // namespace korvane
