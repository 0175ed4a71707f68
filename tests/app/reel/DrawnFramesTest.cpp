// How often the window is drawn: each time takes a processor that others need, and without a graphics
// processor a good part of one.
#include <atomic>

#include "tests/app/reel/ShownScreen.h"

namespace korvane {
namespace {

/// Of what moves when something is pressed.
constexpr int kRestMs = 1500;

class DrawnFrames : public ShownScreen {
  protected:
    void SetUp() override {
        ShownScreen::SetUp();
        QObject::connect(
            window_.get(), &QQuickWindow::frameSwapped, window_.get(), [this] { ++frames_; },
            Qt::DirectConnection);
    }

    /// Until nothing is drawn for a while. \return false when that never happens.
    bool rests() {
        return QTest::qWaitFor(
            [this] {
                const int before = frames_;
                QTest::qWait(120);
                return frames_ == before;
            },
            4 * kRestMs);
    }
    int framesIn(int milliseconds) {
        const int before = frames_;
        QTest::qWait(milliseconds);
        return frames_ - before;
    }
    template <class Work>
    int framesOf(const Work& work) {
        const int before = frames_;
        work();
        QTest::qWait(100);
        return frames_ - before;
    }
    void showPictures(int count, int everyMs) {
        for (int i = 0; i < count; ++i) {
            pixels_.assign(size_t{4} * 90 * 160, static_cast<std::uint8_t>(i));
            auto picture = std::make_shared<DisplayPicture>();
            picture->data = pixels_.data();
            picture->width = 90;
            picture->height = 160;
            picture->strideBytes = 4 * 90;
            PlayerFrame frame{};
            frame.picture = picture;
            players_.consumer->show(frame);
            QTest::qWait(everyMs);
        }
    }

    std::atomic<int> frames_ = 0;
    std::vector<std::uint8_t> pixels_;
};

TEST_F(DrawnFrames, areNoneWhileNothingChanges) {
    ASSERT_TRUE(rests());
    EXPECT_EQ(framesIn(250), 0);
    loadWords();
    ASSERT_TRUE(rests());
    EXPECT_EQ(framesIn(250), 0) << "with words";
    showPreview();
    showPictures(1, 0);
    ASSERT_TRUE(rests());
    EXPECT_EQ(framesIn(250), 0) << "with a preview that stands still";
    view_->closePreview();
    ASSERT_TRUE(rests());
    EXPECT_EQ(framesIn(250), 0) << "after it";
}

TEST_F(DrawnFrames, areNoneForAnOperationThatGetsNoFurther) {
    loadVideo();
    peer().setProcessing(true);
    peer().setStatus(QStringLiteral("Extracting audio…"));
    peer().setProgress(0.2);
    ASSERT_TRUE(rests());
    EXPECT_EQ(framesIn(250), 0);
    peer().setProcessing(false);
}

TEST_F(DrawnFrames, areNoneForAStepOfTheBarThatNobodySees) {
    loadVideo();
    peer().setProcessing(true);
    peer().setProgress(0.2);
    ASSERT_TRUE(rests());
    // A tenth of a pixel altogether.
    const double step = 0.1 / placeOf("progressBar").width() / 20;
    const int drawn = framesOf([&] {
        for (int i = 1; i <= 20; ++i) {
            peer().setProgress(0.2 + i * step);
            QTest::qWait(20);
        }
    });
    EXPECT_LE(drawn, 1);  // one edge of a pixel may lie there
    EXPECT_GE(framesOf([&] { peer().setProgress(0.5); }), 1);
    peer().setProcessing(false);
}

TEST_F(DrawnFrames, areAsManyAsPicturesWhileAPreviewPlays) {
    loadWords();
    showPreview();
    players_.time = 0.1;  // a line is said all the time
    showPictures(1, 0);
    ASSERT_TRUE(rests());
    constexpr int kPictures = 30;
    const int drawn = framesOf([&] { showPictures(kPictures, 33); });
    EXPECT_LE(drawn, kPictures + 2);
    EXPECT_GE(drawn, kPictures / 2);  // on a machine that does much else
}

}  // namespace
}  // namespace korvane
