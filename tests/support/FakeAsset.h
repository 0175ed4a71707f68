// A source that is whatever a test says. No file is opened.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/av/Asset.h"

namespace korvane {

class FakeAsset final : public Asset {
  public:
    using Asset::Asset;

    static AssetTrack videoTrack(Size naturalSize = {1920.0, 1080.0}, float nominalFrameRate = 30.0F) {
        AssetTrack track;
        track.mediaType = MediaType::video;
        track.naturalSize = naturalSize;
        track.nominalFrameRate = nominalFrameRate;
        return track;
    }
    static AssetTrack audioTrack(int streamIndex) {
        AssetTrack track;
        track.mediaType = MediaType::audio;
        track.streamIndex = streamIndex;
        return track;
    }

    bool readable = true;
    bool playable = true;
    MediaTime duration{6000, 600};
    std::vector<AssetTrack> videoTracks{videoTrack()};
    std::vector<AssetTrack> audioTracks{audioTrack(1)};
    /// Called before each load with its name; may throw.
    std::function<void(const std::string&)> beforeLoad = [](const std::string&) {};
    std::vector<std::string> loads;

    bool isReadable() override { return readable; }
    bool isPlayable() override { return playable; }
    std::vector<AssetTrack> loadTracks(MediaType type) override {
        note(type == MediaType::video ? "video tracks" : "audio tracks");
        return type == MediaType::video ? videoTracks : audioTracks;
    }
    MediaTime loadDuration() override {
        note("duration");
        return duration;
    }

  private:
    void note(const std::string& load) {
        loads.push_back(load);
        beforeLoad(load);
    }
};

}  // namespace korvane
