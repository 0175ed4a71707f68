#include "platform/ffmpeg/EditLists.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ffmpeg/ContainerStructure.h"

namespace korvane {
namespace {

/// A stretch of the index in memory, read from front to back; reading beyond its end gives zeros.
class Bytes {
  public:
    explicit Bytes(std::string_view data) : data_(data) {}
    std::size_t left() const { return data_.size(); }
    std::uint64_t number(std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | (i < data_.size() ? static_cast<unsigned char>(data_[i]) : 0U);
        skip(count);
        return value;
    }
    std::string_view take(std::size_t count) {
        const std::string_view part = data_.substr(0, std::min(count, data_.size()));
        skip(count);
        return part;
    }
    void skip(std::size_t count) { data_.remove_prefix(std::min(count, data_.size())); }

  private:
    std::string_view data_;
};

using Visit = std::function<void(std::string_view type, Bytes content)>;

void forEachBox(Bytes bytes, const Visit& visit) {
    while (bytes.left() >= 8) {
        std::uint64_t size = bytes.number(4);
        const std::string_view type = bytes.take(4);
        std::uint64_t header = 8;
        if (size == 1) {
            size = bytes.number(8);
            header = 16;
        }
        if (size == 0)
            size = bytes.left() + header;
        if (size < header)
            return;
        visit(type, Bytes(bytes.take(
                        static_cast<std::size_t>(std::min<std::uint64_t>(size - header, bytes.left())))));
    }
}

struct Edit {
    std::uint64_t duration = 0;  ///< in units of the movie
    std::int64_t mediaTime = 0;  ///< -1: a pause
    bool ordinarySpeed = true;
};

struct Track {
    std::uint32_t id = 0;
    std::vector<Edit> edits;
};

std::vector<Edit> editsOf(Bytes box) {
    const bool wide = box.number(1) == 1;
    box.skip(3);
    const std::uint64_t count = box.number(4);
    std::vector<Edit> edits;
    while (edits.size() < count && box.left() > 0) {
        Edit edit;
        edit.duration = box.number(wide ? 8 : 4);
        const std::uint64_t time = box.number(wide ? 8 : 4);
        edit.mediaTime = wide ? static_cast<std::int64_t>(time)
                              : static_cast<std::int32_t>(static_cast<std::uint32_t>(time));
        edit.ordinarySpeed = box.number(4) == 0x0001'0000;
        edits.push_back(edit);
    }
    return edits;
}

Track trackOf(Bytes box) {
    Track track;
    forEachBox(box, [&](std::string_view type, Bytes content) {
        if (type == "tkhd") {
            const bool wide = content.number(1) == 1;
            content.skip(wide ? 19 : 11);
            track.id = static_cast<std::uint32_t>(content.number(4));
        }
        if (type == "edts")
            forEachBox(content, [&](std::string_view inner, Bytes list) {
                if (inner == "elst")
                    track.edits = editsOf(list);
            });
    });
    return track;
}

/// One shown stretch, perhaps after one pause.
bool isSimple(const std::vector<Edit>& edits) {
    if (edits.empty())
        return true;
    const bool pauses = edits.front().mediaTime == -1;
    return edits.size() == (pauses ? 2U : 1U) && edits.back().mediaTime >= 0 && edits.back().ordinarySpeed;
}

std::optional<MediaTime> movieTime(std::uint64_t value, std::uint64_t timescale) {
    if (timescale == 0 || timescale > std::numeric_limits<std::int32_t>::max() ||
        value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / 4)
        return std::nullopt;
    return MediaTime(static_cast<std::int64_t>(value), static_cast<std::int32_t>(timescale));
}

}  // namespace

EditLists readEditLists(const std::filesystem::path& path) {
    std::uint64_t timescale = 0;
    std::vector<Track> tracks;
    forEachBox(Bytes(movieIndex(path)), [&](std::string_view type, Bytes content) {
        if (type == "mvhd") {
            const bool wide = content.number(1) == 1;
            content.skip(wide ? 19 : 11);
            timescale = content.number(4);
        }
        if (type == "trak")
            tracks.push_back(trackOf(content));
    });
    EditLists result;
    for (const Track& track : tracks)
        result.simple = result.simple && isSimple(track.edits);
    if (!result.simple)
        return result;
    for (const Track& track : tracks) {
        if (track.edits.empty())
            continue;
        const auto pause = movieTime(track.edits.size() == 2 ? track.edits.front().duration : 0, timescale);
        const auto length = movieTime(track.edits.back().duration, timescale);
        // No length means "to the end", as fragmented files have it.
        if (pause && length && *length > kZeroTime)
            result.shown[track.id] = {*pause, *length};
    }
    return result;
}

}  // namespace korvane
