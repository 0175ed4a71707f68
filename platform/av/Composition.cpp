#include "platform/av/Composition.h"

#include <algorithm>
#include <utility>

#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

const char* kindOf(MediaType type) {
    switch (type) {
        case MediaType::video:
            return "video";
        case MediaType::audio:
            return "audio";
    }
    return "unknown";
}

[[noreturn]] void refuse(const AssetTrack& track, const std::string& why) {
    throw MediaError("Can't insert a part of " + track.path.string() + " into the timeline: " + why);
}

}  // namespace

TimeRange CompositionTrack::timeRange() const {
    return {kZeroTime, segments_.empty() ? kZeroTime : segments_.back().target.end()};
}

void CompositionTrack::insertTimeRange(TimeRange source, const AssetTrack& track, MediaTime at) {
    if (track.mediaType != mediaType_) {
        refuse(track, std::string("a track of kind ") + kindOf(mediaType_) + " can't hold " +
                          kindOf(track.mediaType) + ".");
    }
    if (source.isEmpty())
        refuse(track, "the range is empty.");
    if (source.start < kZeroTime)
        refuse(track, "the range starts before the beginning of the file.");
    // Also keeps negative times out: what is there never ends before zero.
    if (at < timeRange().end())
        refuse(track, "there is something at " + at.toString() + " already.");

    const TimeRange target{at, source.duration};
    static_cast<void>(source.end());  // a range that ends beyond all time is refused before anything changes
    static_cast<void>(target.end());
    segments_.push_back({track, source, target});
}

CompositionTrack* Composition::addMutableTrack(MediaType mediaType) {
    return adopt(std::make_unique<CompositionTrack>(nextTrackID(), mediaType));
}

CompositionTrack* Composition::adopt(std::unique_ptr<CompositionTrack> track) {
    tracks_.push_back(std::move(track));
    return tracks_.back().get();
}

std::vector<const CompositionTrack*> Composition::tracks() const {
    std::vector<const CompositionTrack*> all;
    all.reserve(tracks_.size());
    for (const auto& track : tracks_)
        all.push_back(track.get());
    return all;
}

std::vector<const CompositionTrack*> Composition::tracks(MediaType mediaType) const {
    std::vector<const CompositionTrack*> matching = tracks();
    std::erase_if(matching, [mediaType](const auto* track) { return track->mediaType() != mediaType; });
    return matching;
}

MediaTime Composition::duration() const {
    MediaTime longest = kZeroTime;
    for (const auto& track : tracks_)
        longest = std::max(longest, track->timeRange().end());
    return longest;
}

}  // namespace korvane
