// A VideoEditor on fakes, with its log lines kept.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "editor/VideoEditor.h"
#include "platform/ffmpeg/MediaError.h"
#include "tests/support/CollectingMainQueue.h"
#include "tests/support/FakeAsset.h"
#include "tests/support/FakeExportSession.h"

namespace korvane {

/// Which tracks can't be added and which inserts fail.
struct CompositionTroubles {
    std::set<int> missingTracks;                  ///< by order of asking, from 1
    std::map<int, std::set<int>> failingInserts;  ///< by track identifier: insert numbers from 1
};

class TroubledTrack final : public CompositionTrack {
  public:
    TroubledTrack(int trackID, MediaType mediaType, std::set<int> failingInserts)
        : CompositionTrack(trackID, mediaType), failingInserts_(std::move(failingInserts)) {}

    void insertTimeRange(TimeRange source, const AssetTrack& track, MediaTime at) override {
        if (failingInserts_.contains(++inserts_))
            throw MediaError("insert " + std::to_string(inserts_) + " was refused");
        CompositionTrack::insertTimeRange(source, track, at);
    }

  private:
    std::set<int> failingInserts_;
    int inserts_ = 0;
};

class TroubledComposition final : public Composition {
  public:
    explicit TroubledComposition(CompositionTroubles troubles) : troubles_(std::move(troubles)) {}

    CompositionTrack* addMutableTrack(MediaType mediaType) override {
        if (troubles_.missingTracks.contains(++asked_))
            return nullptr;
        const int trackID = nextTrackID();
        return adopt(std::make_unique<TroubledTrack>(trackID, mediaType, troubles_.failingInserts[trackID]));
    }

  private:
    CompositionTroubles troubles_;
    int asked_ = 0;
};

/// Log lines as one text: a failing comparison shows the lines that differ.
inline std::string text(const std::vector<std::string>& lines) {
    std::string joined;
    for (const std::string& line : lines)
        joined += line + "\n";
    return joined;
}

struct EditorFixture {
    explicit EditorFixture(int stage = VideoEditor::debugStage)
        : editor(
              queue, [this](const std::string& line) { log.push_back(line); }, platform(), stage) {}

    CollectingMainQueue queue;
    std::vector<std::string> log;
    std::shared_ptr<FakeAsset> asset = std::make_shared<FakeAsset>("talk.mp4");
    CompositionTroubles troubles;
    std::shared_ptr<SessionScript> session = std::make_shared<SessionScript>();
    bool sessionIsMade = true;
    std::function<void()> onOpen = [] {};
    std::shared_ptr<const Composition> exported;
    VideoEditor editor;

    CompositionData build(const std::vector<SpeechSegment>& segments, const std::stop_token& stop = {}) {
        return editor.buildCompositionData(*asset, segments, stop);
    }

  private:
    EditorPlatform platform() {
        return {
            [this](const std::filesystem::path&, const std::stop_token&) {
                onOpen();
                return asset;
            },
            [this] { return std::make_shared<TroubledComposition>(troubles); },
            [this](std::shared_ptr<const Composition> composition,
                   ExportPreset) -> std::unique_ptr<ExportSession> {
                exported = std::move(composition);
                return sessionIsMade ? std::make_unique<FakeExportSession>(session) : nullptr;
            },
        };
    }
};

}  // namespace korvane
