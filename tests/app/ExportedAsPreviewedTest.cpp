// The real services on a real clip: what a preview shows and plays, moment by moment, against the file that
// is exported from it.
#include <algorithm>
#include <cmath>
#include <span>

#include "app/LiveSubtitle.h"
#include "editor/VideoEditor.h"
#include "platform/av/CompositionReader.h"
#include "tests/app/ScreenFixture.h"
#include "tests/exactness/ReelModel.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/InkMeter.h"
#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
constexpr int kRate = 30;
/// Below the bar code and above the lower corners, where lines stand.
constexpr fixtures::UnitRect kLineRegion{0.0, 0.5, 1.0, 0.92};

/// Every word is a few bars, which can be counted in a picture; neighbouring lines differ.
Words barWords() {
    constexpr double kStarts[] = {3.011, 11.2, 1.037, 17.5, 5.003, 6.77, 2.41, 15.1, 9.909, 13.3};
    Words words;
    for (std::size_t i = 0; i < std::size(kStarts); ++i)
        words.emplace_back(std::string(3 + i / 3 % 3, '|'), kStarts[i],
                           kStarts[i] + 0.2 + 0.03 * static_cast<double>(i));
    return words;
}

class ExportedAsPreviewed : public Screen {
  protected:
    ExportedAsPreviewed() {
        script_->build = [this](const auto& video, const Words& words, const auto& style, const auto& stop) {
            return editor_.buildBundle(video, words, style, stop);
        };
        script_->write = [this](const auto& video, const Words& words, const auto& style, const auto& to,
                                const auto& onProgress, const auto& stop) {
            editor_.exportVideo(video, words, style, to, onProgress, stop);
        };
        peer().setURL(playedClip());
        peer().setWords(barWords());
        view().styleEditor()->setHasShadow(false);
        view().styleEditor()->setHasPopAnimation(false);
    }

    /// Builds the preview as the button does, and keeps it.
    ExportBundle preview() {
        showPreview();
        EXPECT_EQ(view().statusText().toStdString(), "Ready") << view().errorText().toStdString();
        return *view().previewBundle();
    }
    /// Exports what is previewed, as the button does.
    std::filesystem::path exported() {
        panels_.answer = folder_.path() / "reel.mp4";
        view().exportReel();
        runUntilIdle();
        EXPECT_EQ(view().statusText().toStdString(), "Export complete") << view().errorText().toStdString();
        return *panels_.answer;
    }

    ~ExportedAsPreviewed() override { view_.reset(); }

    VideoEditor editor_{queue_, silentLog()};
};

/// A preview's item, played on scripted time from the loop point through more than one lap.
struct Played final : PlayedReel {
    explicit Played(const ExportBundle& bundle) : item(bundle.previewPlayerItem()) {
        loopPoint = bundle.prerollDuration();
        open(item);
        player->setLoopHint(loopPoint);
        loop();
        start();
        run(6s);
        EXPECT_GE(ends, 1);
    }
    void TestBody() override {}

    /// What the device played from the loop point on.
    std::span<const float> lap() const {
        const std::int64_t first = samples(loopPoint);
        std::vector<float> probe(500);
        CompositionAudioReader reader(item->composition(), item->audioMix(), {kReelRateHz, 1}, {});
        reader.read(first + kReelRateHz / 10, probe);
        const auto& tape = outputs.tape->samples;
        const auto found = std::search(tape.begin(), tape.end(), probe.begin(), probe.end());
        EXPECT_NE(found, tape.end());
        const std::int64_t length = samples(item->composition()->duration()) - first;
        return std::span(tape).subspan(static_cast<std::size_t>(found - tape.begin() - kReelRateHz / 10),
                                       static_cast<std::size_t>(length));
    }

    std::shared_ptr<PlayerItem> item;
};

/// The text that the preview has at item time `seconds`, as the number of its bars.
int barsOf(const std::vector<SubtitleEntry>& lines, double seconds) {
    const std::string text = subtitleAt(lines, seconds);
    return static_cast<int>(std::ranges::count(text, '|'));
}

TEST_F(ExportedAsPreviewed, eachPictureAndEachLine) {
    const ExportBundle bundle = preview();
    const auto file = exported();
    const double preroll = bundle.prerollDuration().seconds();
    ASSERT_GT(preroll, 0.0);

    const Played played(bundle);
    auto shown = played.screen->all();
    const auto lapEnd = std::ranges::adjacent_find(
        shown, [](const auto& one, const auto& next) { return next.time < one.time; });
    ASSERT_NE(lapEnd, shown.end());
    shown.erase(std::next(lapEnd), shown.end());

    int frames = 0;
    fixtures::readPictures(file, [&](const fixtures::DecodedPicture& picture) {
        ++frames;
        const double at = preroll + picture.seconds();
        const auto number = fixtures::readFrameNumber(picture.luma);
        EXPECT_TRUE(number) << "picture " << picture.index;
        if (!number)
            return false;
        // What the preview showed in the middle of this picture's time.
        const auto after =
            std::ranges::find_if(shown, [&](const auto& s) { return s.time.seconds() > at + 0.5 / kRate; });
        EXPECT_NE(after, shown.begin());
        EXPECT_EQ(std::prev(after)->number, number->number) << "picture " << picture.index;
        const auto ink = fixtures::measureInk(picture.luma, kLineRegion);
        EXPECT_EQ(ink ? ink->strokes : 0, barsOf(bundle.subtitleEntries(), at + 1e-4))
            << "picture " << picture.index;
        return true;
    });
    const exactness::ReelModel model(barWords());
    EXPECT_EQ(frames, model.frameCount(kRate));
}

TEST_F(ExportedAsPreviewed, theSoundToTheSample) {
    const ExportBundle bundle = preview();
    const fixtures::DecodedSound file = fixtures::readSound(exported());
    ASSERT_EQ(file.rateHz, kReelRateHz);
    ASSERT_EQ(file.channels, 1);
    const Played played(bundle);
    const auto lap = played.lap();
    ASSERT_NEAR(static_cast<double>(file.samples.size()), static_cast<double>(lap.size()), 1'024.0);

    constexpr std::size_t kStretch = kReelRateHz / 10;
    const auto product = [&](std::size_t inLap, std::size_t inFile) {
        double sum = 0.0;
        for (std::size_t n = 0; n < kStretch; ++n)
            sum += static_cast<double>(lap[inLap + n]) * file.samples[inFile + n];
        return sum;
    };
    for (std::size_t at = 2; at + kStretch + 2 < lap.size(); at += kStretch) {
        double own = 0.0;
        for (const float sample : lap.subspan(at, kStretch))
            own += static_cast<double>(sample) * sample;
        const double together = product(at, at);
        // Compressed sound is a little off; one sample to either side would be much more so.
        EXPECT_NEAR(together / own, 1.0, 0.05) << "at sample " << at;
        EXPECT_GT(together, product(at, at - 1)) << "at sample " << at;
        EXPECT_GT(together, product(at, at + 1)) << "at sample " << at;
    }
}

}  // namespace
}  // namespace korvane
