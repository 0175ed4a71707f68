#include "platform/ffmpeg/MediaProbe.h"

extern "C" {
#include <libavutil/display.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/ffmpeg/CodecOpening.h"
#include "platform/ffmpeg/Demuxer.h"
#include "platform/ffmpeg/TimeConversion.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// Beyond this a stated rate is the clock's, not the pictures'.
constexpr double kFastestBelievableRate = 500.0;
constexpr double kOrdinaryRate = 30.0;
// A start (microseconds) that changes no length by anything that shows.
constexpr std::int64_t kUnimportantStart = 100'000;
// A header's length may differ from the index' by this much (seconds) before the index is believed.
constexpr double kBelievableSlack = 1.0;

bool isWanted(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    if (type == AVMEDIA_TYPE_AUDIO)
        return stream.codecpar->sample_rate > 0 || stream.codecpar->codec_id != AV_CODEC_ID_NONE;
    constexpr int kStills =
        AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS | AV_DISPOSITION_STILL_IMAGE;
    return type == AVMEDIA_TYPE_VIDEO && (stream.disposition & kStills) == 0;
}

/// The matrix with its translation replaced by the one that puts the picture's corner at the origin: some
/// writers leave it out, and then the picture would lie beside its frame.
AffineTransform movedToOrigin(AffineTransform t, Size size) {
    t.tx = t.ty = 0.0;
    const Point corners[] = {t.apply({0, 0}), t.apply({size.width, 0}), t.apply({0, size.height}),
                             t.apply({size.width, size.height})};
    double left = corners[0].x;
    double top = corners[0].y;
    for (const Point& p : corners) {
        left = std::min(left, p.x);
        top = std::min(top, p.y);
    }
    t.tx = -left + 0.0;  // never -0
    t.ty = -top + 0.0;
    return t;
}

/// The nearest quarter turn, mirrored or not: pictures are turned by moving pixels. Some editors write a
/// matrix that tilts the picture; upright is better than nothing to see.
AffineTransform withoutTilt(AffineTransform t) {
    const bool lies = std::abs(t.b) + std::abs(t.c) > std::abs(t.a) + std::abs(t.d);
    return lies ? AffineTransform{0.0, t.b, t.c, 0.0, 0.0, 0.0}
                : AffineTransform{t.a, 0.0, 0.0, t.d, 0.0, 0.0};
}

AffineTransform orientationOf(const AVStream& stream, Size size) {
    std::size_t bytes = 0;
    const std::uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &bytes);
    if (!data || bytes < 9 * sizeof(std::int32_t))
        return {};
    const auto* m = reinterpret_cast<const std::int32_t*>(data);
    const auto fixed = [](std::int32_t v) { return static_cast<double>(v) / 65536.0; };
    const AffineTransform t = withoutTilt({fixed(m[0]), fixed(m[1]), fixed(m[3]), fixed(m[4]), 0.0, 0.0});
    if (std::abs(t.a * t.d - t.b * t.c) < 1e-6)
        return {};  // a matrix that would flatten the picture is no orientation
    return movedToOrigin(t, size);
}

double rateOf(const AVStream& stream) {
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate})
        if (rate.num > 0 && rate.den > 0 && av_q2d(rate) <= kFastestBelievableRate)
            return av_q2d(rate);
    return stream.avg_frame_rate.num > 0 ? kOrdinaryRate : 0.0;
}

MediaTime clampedTime(std::int64_t ticks, AVRational base) {
    return timeOfTicks(std::max<std::int64_t>(0, ticks), base);
}

struct IndexEnd {
    std::int64_t last = AV_NOPTS_VALUE;  ///< decoding time of the last packet
    std::int64_t step = 0;               ///< mean distance of packets
};

/// The last packet that the index of an ISO media file knows, in the stream's ticks.
IndexEnd indexEnd(AVStream& stream) {
    const int count = avformat_index_get_entries_count(&stream);
    if (count <= 0)
        return {};
    const AVIndexEntry* last = avformat_index_get_entry(&stream, count - 1);
    const AVIndexEntry* first = avformat_index_get_entry(&stream, 0);
    return {last->timestamp, count > 1 ? (last->timestamp - first->timestamp) / (count - 1) : 0};
}

/// Ticks after time 0 by which the last packet that the index knows has surely ended; unset without an index.
std::int64_t latestBelievableEnd(const Demuxer& demuxer, int streamIndex) {
    AVStream& stream = *demuxer.stream(streamIndex);
    const IndexEnd index = indexEnd(stream);
    if (index.last == AV_NOPTS_VALUE)
        return AV_NOPTS_VALUE;
    const auto slack = static_cast<std::int64_t>(kBelievableSlack / av_q2d(stream.time_base));
    return index.last - demuxer.zeroTicks(streamIndex) + index.step + slack;
}

struct Extent {
    std::int64_t start = AV_NOPTS_VALUE;
    std::int64_t end = AV_NOPTS_VALUE;
};

/// Start and end of a stream as the headers tell, in ticks after time 0; an end they don't know stays unset.
Extent extentFromHeaders(const Demuxer& demuxer, int streamIndex, bool trustIndex) {
    AVStream& stream = *demuxer.stream(streamIndex);
    const std::int64_t zero = demuxer.zeroTicks(streamIndex);
    Extent extent;
    extent.start = (stream.start_time == AV_NOPTS_VALUE ? zero : stream.start_time) - zero;
    if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0)
        extent.end = extent.start + stream.duration;
    if (!trustIndex)
        return extent;
    const IndexEnd index = indexEnd(stream);
    if (index.last == AV_NOPTS_VALUE)
        return extent;
    const std::int64_t last = index.last - zero;
    const auto slack = static_cast<std::int64_t>(kBelievableSlack / av_q2d(stream.time_base));
    // Nobody knows how long the last packet lasts, so anything up to a mean step is believed.
    if (extent.end == AV_NOPTS_VALUE || extent.end < last - slack || extent.end > last + index.step + slack)
        extent.end = last + index.step;
    return extent;
}

/// Reads all packets to learn where each stream really ends.
std::vector<Extent> extentsFromPackets(Demuxer& demuxer, const std::stop_token& stop) {
    std::vector<Extent> extents(demuxer.format()->nb_streams);
    Packet packet = makePacket();
    while (true) {
        checkCancelled(stop);
        if (av_read_frame(demuxer.format(), packet.get()) < 0)
            break;
        const auto index = static_cast<std::size_t>(packet->stream_index);
        const std::int64_t stamp = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (index < extents.size() && stamp != AV_NOPTS_VALUE && (packet->flags & AV_PKT_FLAG_DISCARD) == 0) {
            const std::int64_t zero = demuxer.zeroTicks(packet->stream_index);
            Extent& e = extents[index];
            const std::int64_t end = stamp - zero + std::max<std::int64_t>(0, packet->duration);
            e.start = e.start == AV_NOPTS_VALUE ? stamp - zero : std::min(e.start, stamp - zero);
            e.end = e.end == AV_NOPTS_VALUE ? end : std::max(e.end, end);
        }
        av_packet_unref(packet.get());
    }
    return extents;
}

StreamFacts factsOf(const Demuxer& demuxer, int index) {
    AVStream* stream = demuxer.stream(index);
    StreamFacts facts;
    facts.index = index;
    facts.isVideo = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    facts.decodable = canDecode(demuxer, index);
    if (!facts.isVideo) {
        facts.sampleRateHz = stream->codecpar->sample_rate;
        facts.channels = stream->codecpar->ch_layout.nb_channels;
        return facts;
    }
    const AVRational aspect = av_guess_sample_aspect_ratio(demuxer.format(), stream, nullptr);
    const double pixelAspect = aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0;
    facts.naturalSize = {stream->codecpar->width * pixelAspect,
                         static_cast<double>(stream->codecpar->height)};
    facts.orientation = orientationOf(*stream, facts.naturalSize);
    facts.framesPerSecond = rateOf(*stream);
    return facts;
}

}  // namespace

MediaFacts probeMedia(const std::filesystem::path& path, std::stop_token stop, ProbeInterest interest) {
    const bool soundOnly = interest == ProbeInterest::sound;
    const auto demuxer =
        Demuxer::open(path, stop, soundOnly ? Demuxer::Interest::sound : Demuxer::Interest::everything);
    const auto known = soundOnly ? nullptr : demuxer->learnt();
    MediaFacts facts;
    for (unsigned i = 0; i < demuxer->format()->nb_streams; ++i)
        if (isWanted(*demuxer->stream(static_cast<int>(i))))
            facts.streams.push_back(factsOf(*demuxer, static_cast<int>(i)));
    for (StreamFacts& s : facts.streams)
        s.known = known;

    const AVFormatContext& format = *demuxer->format();
    const bool fragmented = demuxer->isFragmented();
    const bool guessed =
        format.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE || format.duration <= 0;
    const bool trustIndex = demuxer->isIsoMedia() && !fragmented;
    // Matroska counts its length from 0 or from its first packet, as its writer liked.
    const bool startsLate = std::strstr(format.iformat->name, "matroska") != nullptr &&
                            format.start_time != AV_NOPTS_VALUE && format.start_time > kUnimportantStart;
    bool headersKnow = !fragmented && !startsLate;
    for (const StreamFacts& s : facts.streams)
        headersKnow = headersKnow &&
                      (!guessed || extentFromHeaders(*demuxer, s.index, trustIndex).end != AV_NOPTS_VALUE);
    const std::vector<Extent> measured =
        headersKnow ? std::vector<Extent>{} : extentsFromPackets(*demuxer, stop);

    MediaTime whole;
    if (!guessed && !trustIndex && measured.empty()) {
        // What is left of the container's length behind its start.
        const std::int64_t start =
            std::max<std::int64_t>(0, format.start_time == AV_NOPTS_VALUE ? 0 : format.start_time);
        whole = clampedTime(format.duration + (demuxer->isIsoMedia() ? start : 0), AV_TIME_BASE_Q);
    }
    for (StreamFacts& s : facts.streams) {
        const AVRational base = demuxer->stream(s.index)->time_base;
        const Extent extent = measured.empty() ? extentFromHeaders(*demuxer, s.index, trustIndex)
                                               : measured[static_cast<std::size_t>(s.index)];
        if (const auto shown = demuxer->shownRange(s.index)) {
            s.timeRange = *shown;
            // A list may be as wrong as any header: nothing is shown longer than there are packets.
            const std::int64_t packets = trustIndex ? latestBelievableEnd(*demuxer, s.index) : AV_NOPTS_VALUE;
            if (packets != AV_NOPTS_VALUE && shown->end() > clampedTime(packets, base))
                s.timeRange.duration = std::max(kZeroTime, clampedTime(packets, base) - shown->start);
            facts.duration = std::max(facts.duration, s.timeRange.end());
            continue;
        }
        const std::int64_t from = extent.start == AV_NOPTS_VALUE ? 0 : extent.start;
        s.timeRange.start = clampedTime(from, base);
        const MediaTime end = extent.end == AV_NOPTS_VALUE ? whole : clampedTime(extent.end, base);
        s.timeRange.duration = std::max(kZeroTime, end - s.timeRange.start);
        facts.duration = std::max(facts.duration, s.timeRange.end());
    }
    facts.duration = std::max(facts.duration, whole);
    return facts;
}

}  // namespace korvane
