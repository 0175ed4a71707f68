// A reel cut from a bar-coded, sound-coded clip, and a player of it on scripted time.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/av/Player.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/platform/av/ScriptedPlayback.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane {

inline constexpr int kReelRateHz = 48'000;

/// 30 pictures a second, 20 s, mono PCM, as small as the bar code can be.
std::filesystem::path playedClip(bool withSound = true);

struct Reel {
    std::shared_ptr<Composition> composition = std::make_shared<Composition>();
    VideoComposition video;
    std::shared_ptr<PlayerItem> item() const {
        return std::make_shared<PlayerItem>(composition, video, std::nullopt);
    }
    /// The source picture that belongs to item time `t`.
    int pictureAt(MediaTime t) const;
    /// The item's sound from sample `from` to `to`.
    std::vector<float> sound(std::int64_t from, std::int64_t to) const;
};
/// A lead-in of 0.25 s and words of about 0.3 s out of order.
Reel makeReel(const std::filesystem::path& clip, int words = 7);

/// Moves time in small steps; what is posted to the main queue runs between them.
struct PlayedReel : testing::Test {
    Reel reel = makeReel(playedClip());
    MediaTime loopPoint{150, 600};
    ScriptedClock clock;
    ScriptedOutputs outputs{clock};
    CollectingMainQueue queue;
    std::shared_ptr<ScriptedScreen> screen = std::make_shared<ScriptedScreen>(clock);
    std::unique_ptr<Player> player;
    Observation atEnd;
    std::size_t threads = 3;
    int ends = 0;
    std::vector<std::string> events;  ///< of the completions made by note()

    void open(std::shared_ptr<PlayerItem> item);
    void open() { open(reel.item()); }
    /// At the end: back to the loop point and on, like the preview does.
    void loop();
    /// Exactly to the loop point, prerolled, playing.
    void start();
    void settle();
    void run(ClockTime time, ClockTime step = std::chrono::milliseconds(5));
    Player::Completion note(const std::string& name);
    double seconds() const { return player->currentTime().seconds(); }

    /// Where on the tape the item's sound from `sample` on begins; at or behind `from`. -1: nowhere.
    std::int64_t findSound(std::int64_t sample, std::int64_t from = 0) const;
    /// Clock time at which the tape's sample n was heard.
    static ClockTime heardAt(std::int64_t n);
    std::int64_t samples(MediaTime t) const { return t.toUnits(kReelRateHz); }
};

}  // namespace korvane
