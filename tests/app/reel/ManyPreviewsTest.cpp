// Previews made by the real services, played by the real player and drawn in the window: what they leave
// behind.
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "editor/VideoEditor.h"
#include "platform/av/Player.h"
#include "tests/app/LineTimers.h"
#include "tests/app/reel/ShownScreen.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {
namespace {

struct NoOutputs final : AudioOutputFactory {
    std::unique_ptr<AudioOutput> open(AudioFormat) override { return nullptr; }
    std::shared_ptr<void> observeDevices(std::function<void()>) override { return nullptr; }
};

std::filesystem::path smallClip() {
    return fixtures::cachedClip("previewed.mov", [](const auto& to) {
        fixtures::ClipSpec spec;
        spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 4.0)};
        spec.audio = {fixtures::AudioSpec{}};
        fixtures::writeClip(spec, to);
    });
}

struct Held {
    double megabytes = 0.0;
    std::ptrdiff_t threads = 0;
    std::ptrdiff_t files = 0;

    static Held now() {
        malloc_trim(0);
        std::ifstream in("/proc/self/statm");
        long total = 0;
        long resident = 0;
        in >> total >> resident;
        const auto entries = [](const char* folder) {
            return std::distance(std::filesystem::directory_iterator(folder), {});
        };
        return {static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6,
                entries("/proc/self/task"), entries("/proc/self/fd")};
    }
};

class ManyPreviews : public ShownScreen {
  protected:
    void SetUp() override {
        script_->build = [this](const auto& video, const Words& words, const auto& style, const auto& stop) {
            return editor_.buildBundle(video, words, style, stop);
        };
        view_ = makeView(defaults_, realPreviewPlayers(queue_, clock_, outputs_));
        ShownScreen::SetUp();
        peer().setURL(smallClip());
        peer().setWords({{"one", 0.6, 0.9}, {"two", 1.4, 1.7}, {"three", 2.8, 3.1}});
    }
    ~ManyPreviews() override {
        window_.reset();
        view_.reset();
    }

    void previewUntilSeen() {
        click("preview");
        runUntilIdle();
        ASSERT_EQ(view().statusText(), QStringLiteral("Ready"));
        ASSERT_TRUE(QTest::qWaitFor([this] {
            const QQuickItem* picture = find("playerView");
            return picture && picture->property("hasPicture").toBool();
        }));
    }

    SteadyPlaybackClock clock_;
    NoOutputs outputs_;
    VideoEditor editor_{queue_, silentLog()};
};

TEST_F(ManyPreviews, leaveMemoryThreadsAndFilesAsTheyWereAndOneTimerAtMost) {
    for (int i = 0; i < 30; ++i)
        previewUntilSeen();
    view().closePreview();
    const Held before = Held::now();
    for (int i = 0; i < 200; ++i) {
        previewUntilSeen();
        if (i % 4 == 0)
            click("closePreview");
    }

    previewUntilSeen();
    LineTimers timers;
    QTest::qWait(200);
    EXPECT_EQ(timers.seen.size(), 1U);
    view().closePreview();
    timers.seen.clear();
    QTest::qWait(200);
    EXPECT_EQ(timers.seen.size(), 0U);

    const Held after = Held::now();
    std::printf("200 previews: %+.1f MB on %.1f MB, %td threads, %td files\n",
                after.megabytes - before.megabytes, before.megabytes, after.threads, after.files);
    EXPECT_LT(after.megabytes - before.megabytes, 8.0);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_EQ(after.files, before.files);
}

}  // namespace
}  // namespace korvane
