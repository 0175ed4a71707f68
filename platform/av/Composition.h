// A timeline cut together from ranges of source tracks. Built once on one thread, then read by anyone from
// any thread through `const`.
//
//   source   |----[a b)-------[c d)-----|      insert [a,b) at 0, [c,d) at b-a
//   track    |[a b)[c d)|
#pragma once

#include <memory>
#include <vector>

#include "platform/av/Asset.h"
#include "platform/time/MediaTime.h"

namespace korvane {

/// `target.duration == source.duration`; nothing is retimed.
struct TrackSegment {
    AssetTrack track;
    TimeRange source;
    TimeRange target;
};

class CompositionTrack {
  public:
    CompositionTrack(int trackID, MediaType mediaType) : trackID_(trackID), mediaType_(mediaType) {}
    virtual ~CompositionTrack() = default;

    int trackID() const { return trackID_; }
    MediaType mediaType() const { return mediaType_; }
    /// Ordered by target start, without overlap; there may be gaps.
    const std::vector<TrackSegment>& segments() const { return segments_; }
    /// From 0 to the end of the last segment.
    TimeRange timeRange() const;

    /// Adds `source` of `track` at `at`, which must not lie before the end of what is there.
    /// When it fails, nothing has been modified.
    /// \throws MediaError for an empty range, one that starts before 0, another media type, or an `at` that
    /// is taken.
    virtual void insertTimeRange(TimeRange source, const AssetTrack& track, MediaTime at);

  private:
    int trackID_;
    MediaType mediaType_;
    std::vector<TrackSegment> segments_;
};

class Composition {
  public:
    virtual ~Composition() = default;

    /// Adds an empty track with the next free identifier (from 1). May return null when none can be made.
    /// The composition keeps ownership.
    virtual CompositionTrack* addMutableTrack(MediaType mediaType);

    std::vector<const CompositionTrack*> tracks() const;
    std::vector<const CompositionTrack*> tracks(MediaType mediaType) const;
    /// The end of the longest track; zero without content.
    MediaTime duration() const;

  protected:
    CompositionTrack* adopt(std::unique_ptr<CompositionTrack> track);
    int nextTrackID() const { return static_cast<int>(tracks_.size()) + 1; }

  private:
    std::vector<std::unique_ptr<CompositionTrack>> tracks_;
};

}  // namespace korvane
