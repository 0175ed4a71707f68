// Previews with the real player on a real clip, without a sound device: what they leave behind.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>

#include "platform/av/Player.h"
#include "tests/app/ScreenFixture.h"
#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

struct NoOutputs final : AudioOutputFactory {
    std::unique_ptr<AudioOutput> open(AudioFormat) override { return nullptr; }
    std::shared_ptr<void> observeDevices(std::function<void()>) override { return nullptr; }
};

double residentMegabytes() {
    malloc_trim(0);
    std::ifstream in("/proc/self/statm");
    long total = 0;
    long resident = 0;
    in >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

std::ptrdiff_t threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

class PlayedPreview : public Screen {
  protected:
    PlayedPreview() {
        script_->build = [this](const auto& video, const Words& words, const auto& style, const auto&) {
            const auto item = reel_.item();
            items_.push_back(item);
            return ExportBundle(item, {{0.0, 100.0, "A"}}, style, video, words, MediaTime(150, 600));
        };
        view_ = makeView(defaults_, realPreviewPlayers(queue_, clock_, outputs_));
        loadWords();
    }
    ~PlayedPreview() override { view_.reset(); }

    std::ptrdiff_t itemsAlive() const {
        return std::ranges::count_if(items_, [](const auto& item) { return !item.expired(); });
    }
    void showAndLook() {
        showPreview();
        view().previewAppeared();
    }

    SteadyPlaybackClock clock_;
    NoOutputs outputs_;
    Reel reel_ = makeReel(playedClip(false));
    std::vector<std::weak_ptr<PlayerItem>> items_;
};

TEST_F(PlayedPreview, beginsBehindTheLeadInAndMovesOn) {
    showAndLook();
    EXPECT_EQ(view().statusText().toStdString(), "Ready");
    EXPECT_GE(view().previewPlayer()->currentTime(), 0.25);
    EXPECT_LT(view().previewPlayer()->currentTime(), 0.5);
    runUntil([this] { return view().previewPlayer()->currentTime() > 0.5; });
    EXPECT_EQ(view().currentSubtitle().toStdString(), "A");
}

TEST_F(PlayedPreview, loopsFromBehindTheLeadIn) {
    reel_ = makeReel(playedClip(false), 1);
    showPreview();
    double last = 0.0;
    double lowest = 10.0;
    int laps = 0;
    runUntil([&] {
        const double now = view().previewPlayer()->currentTime();
        if (now < last) {
            ++laps;
            lowest = std::min(lowest, now);
        }
        last = now;
        return laps == 3;
    });
    EXPECT_GE(lowest, 0.25);
    EXPECT_EQ(view().previewPlayer()->rate(), 1.0);
}

TEST_F(PlayedPreview, aClosedOneLeavesNoThreadAndNoItem) {
    showPreview();
    view().closePreview();
    const auto threads = threadCount();
    showAndLook();
    EXPECT_GT(threadCount(), threads);
    view().closePreview();
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(itemsAlive(), 0);
}

TEST_F(PlayedPreview, aStopWhileItIsMadeReadyUnwinds) {
    for (int i = 0; i < 20; ++i) {
        view().startPreview();
        for (int step = 0; step < i; ++step)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 2);
        view().stopBuildPreview();
        runUntilIdle();
        view().closePreview();
        ASSERT_EQ(itemsAlive(), 0);
    }
}

TEST_F(PlayedPreview, twoHundredInARowLeaveMemoryFlat) {
    // The allocator's own holdings go up and down; what is lost grows in every batch.
    double least = 1e9;
    double before = 0.0;
    for (int batch = 0; batch <= 4; ++batch) {
        for (int i = 0; i < 50; ++i) {
            showAndLook();
            ASSERT_EQ(itemsAlive(), 1);
        }
        const double now = residentMegabytes();
        if (batch > 0)
            least = std::min(least, now - before);
        before = now;
    }
    std::printf("50 previews more: %+.1f MB on %.1f MB\n", least, before);
    EXPECT_LT(least, 2.0);
}

}  // namespace
}  // namespace korvane
