// Players that note what is asked of them and answer when a test says so.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/av/PreviewPlayer.h"

namespace korvane {

/// What the players do, and what became of them. Outlives them.
struct PlayerScript {
    bool makesReady = true;       ///< the item is ready once it has a player
    bool answersSeeks = true;     ///< at once, else through `seekAnswer`
    bool answersPrerolls = true;  ///< at once, else through `prerollAnswer`
    bool finishes = true;         ///< what the answers at once say
    double time = 0.0;            ///< seconds that every player stands at

    std::function<void(const std::string&)> note = [](const std::string&) {};
    PreviewPlayer::Completion seekAnswer;
    PreviewPlayer::Completion prerollAnswer;
    std::vector<std::function<void()>> atEnd;  ///< observers of the last player
    std::optional<MediaTime> loopHint;         ///< of the last player
    std::shared_ptr<FrameConsumer> consumer;   ///< of the last player
    std::pair<int, int> frameSize;             ///< of the last player
    int made = 0;
    int alive = 0;
    int goneWhilePlaying = 0;

    /// The last player comes to the end of its item.
    void reachEnd() const {
        for (const auto& observer : std::vector(atEnd))
            observer();
    }
};

class ScriptedPlayer final : public PreviewPlayer {
  public:
    ScriptedPlayer(PlayerScript& script, const std::shared_ptr<PlayerItem>& item) : script_(script) {
        ++script_.made;
        ++script_.alive;
        script_.atEnd.clear();
        script_.loopHint.reset();
        script_.consumer = nullptr;
        if (script_.makesReady)
            item->becomeReady();
    }
    ~ScriptedPlayer() override {
        script_.goneWhilePlaying += rate_ > 0.0 ? 1 : 0;
        --script_.alive;
    }

    void play() override {
        rate_ = 1.0;
        script_.note("play");
    }
    void pause() override {
        rate_ = 0.0;
        script_.note("pause");
    }
    double rate() const override { return rate_; }
    double currentTime() const override { return script_.time; }
    void seek(MediaTime to, Completion completion) override { noteSeek("seek " + to.toString(), completion); }
    void seek(MediaTime to, MediaTime before, MediaTime after, Completion completion) override {
        noteSeek("seek " + to.toString() + " within " + before.toString() + " and " + after.toString(),
                 completion);
    }
    void preroll(double rate, Completion completion) override {
        script_.note("preroll " + std::to_string(rate).substr(0, 3));
        script_.prerollAnswer = completion;
        if (script_.answersPrerolls)
            completion(script_.finishes);
    }
    void setActionAtItemEnd(ActionAtItemEnd action) override {
        script_.note(action == ActionAtItemEnd::none ? "at end none" : "at end pause");
    }
    void observeEnd(std::function<void()> observer) override {
        script_.note("observe end");
        script_.atEnd.push_back(std::move(observer));
    }
    void setLoopHint(MediaTime loopPoint) override { script_.loopHint = loopPoint; }
    void setFrameSize(int width, int height) override { script_.frameSize = {width, height}; }
    void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) override {
        script_.consumer = std::move(consumer);
    }

  private:
    void noteSeek(const std::string& line, const Completion& completion) {
        script_.note(line);
        script_.seekAnswer = completion;
        if (script_.answersSeeks)
            completion(script_.finishes);
    }

    PlayerScript& script_;
    double rate_ = 0.0;
};

}  // namespace korvane
