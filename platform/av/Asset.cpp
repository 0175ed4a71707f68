#include "platform/av/Asset.h"

#include <algorithm>

#include "platform/ffmpeg/MediaProbe.h"

namespace korvane {
namespace {

/// Phones write the same sound a second time in a spatial form that has no decoder here; beside sound that
/// can be heard, it is left out rather than in the way.
bool isNeedless(const StreamFacts& stream, const std::vector<StreamFacts>& all) {
    return !stream.isVideo && !stream.decodable && std::ranges::any_of(all, [](const StreamFacts& other) {
        return !other.isVideo && other.decodable;
    });
}

}  // namespace

const char* mediaTypeName(MediaType type) {
    switch (type) {
        case MediaType::video:
            return "vide";
        case MediaType::audio:
            return "soun";
    }
    return "";
}

struct Asset::Contents {
    MediaTime duration;
    std::vector<AssetTrack> tracks;
    std::vector<bool> decodable;  ///< track by track
};

Asset::Asset(std::filesystem::path path, std::stop_token stop)
    : path_(std::move(path)), stop_(std::move(stop)) {}
Asset::~Asset() = default;

const Asset::Contents& Asset::contents(bool soundOnly) {
    const std::scoped_lock lock(mutex_);
    if (contents_)
        return *contents_;
    if (soundOnly && soundContents_)
        return *soundContents_;
    const MediaFacts facts =
        probeMedia(path_, stop_, soundOnly ? ProbeInterest::sound : ProbeInterest::everything);
    auto read = std::make_unique<Contents>();
    read->duration = facts.duration;
    for (const StreamFacts& stream : facts.streams) {
        if (isNeedless(stream, facts.streams))
            continue;
        AssetTrack track;
        track.path = path_;
        track.mediaType = stream.isVideo ? MediaType::video : MediaType::audio;
        track.streamIndex = stream.index;
        track.timeRange = stream.timeRange;
        track.naturalSize = stream.naturalSize;
        track.preferredTransform = stream.orientation;
        if (stream.isVideo)
            track.known = stream.known;
        track.nominalFrameRate = static_cast<float>(stream.framesPerSecond);
        track.sampleRateHz = stream.sampleRateHz;
        track.channels = stream.channels;
        read->tracks.push_back(track);
        read->decodable.push_back(stream.decodable);
    }
    auto& kept = soundOnly ? soundContents_ : contents_;
    kept = std::move(read);
    return *kept;
}

bool Asset::isReadable() {
    try {
        return !contents(false).tracks.empty();
    } catch (const std::exception&) {
        return false;  // whoever loads the tracks gets the reason
    }
}

bool Asset::isPlayable() {
    if (!isReadable())
        return false;
    const Contents& c = contents(false);
    bool seen[2] = {};
    for (std::size_t i = 0; i < c.tracks.size(); ++i) {
        bool& first = seen[c.tracks[i].mediaType == MediaType::video ? 0 : 1];
        if (!first && !c.decodable[i])
            return false;
        first = true;
    }
    return true;
}

std::vector<AssetTrack> Asset::loadTracks(MediaType type) {
    std::vector<AssetTrack> result;
    std::ranges::copy_if(contents(type == MediaType::audio).tracks, std::back_inserter(result),
                         [type](const AssetTrack& t) { return t.mediaType == type; });
    return result;
}

MediaTime Asset::loadDuration() {
    return contents(true).duration;
}

}  // namespace korvane
