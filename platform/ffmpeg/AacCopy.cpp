#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include "platform/ffmpeg/Demuxer.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MovieWriter.h"
#include "platform/ffmpeg/Muxer.h"
#include "platform/ffmpeg/TimeConversion.h"

extern "C" {
#include <libavcodec/bsf.h>
}

namespace korvane {
namespace {

using BitstreamFilter = std::unique_ptr<AVBSFContext, FreeByAddress<av_bsf_free>>;

// Packets of AAC before the first that is heard, for its decoder.
constexpr std::int64_t kRunInPackets = 4;
// Samples in a packet where nothing says so.
constexpr std::int64_t kUsualFrameSize = 1024;

/// Brings AAC with headers of its own (transport streams) into the form of MP4; leaves other AAC alone.
BitstreamFilter mp4Form(const AVStream& stream, const std::filesystem::path& file) {
    AVBSFContext* context = nullptr;
    int result = av_bsf_alloc(
        av_bsf_get_by_name(stream.codecpar->extradata_size > 0 ? "null" : "aac_adtstoasc"), &context);
    BitstreamFilter filter(context);
    if (result >= 0)
        result = avcodec_parameters_copy(context->par_in, stream.codecpar);
    if (result >= 0) {
        context->time_base_in = stream.time_base;
        result = av_bsf_init(context);
    }
    if (result < 0)
        throwMediaError(result, "Reading the sound of", file);
    return filter;
}

class PacketCopy {
  public:
    PacketCopy(Demuxer& demuxer, int streamIndex, const std::filesystem::path& destination,
               const std::stop_token& stop)
        : demuxer_(demuxer),
          source_(*demuxer.stream(streamIndex)),
          zero_(demuxer.zeroTicks(streamIndex)),
          filter_(mp4Form(source_, demuxer.path())),
          muxer_(destination, "ipod", stop) {
        AVStream* target = muxer_.addStream();
        if (avcodec_parameters_copy(target->codecpar, filter_->par_out) < 0)
            throw std::bad_alloc();
        target->codecpar->codec_tag = 0;
        target->time_base = {1, source_.codecpar->sample_rate};
        target_ = target;
        samples_ =
            source_.codecpar->frame_size > 0 ? std::int64_t{source_.codecpar->frame_size} : kUsualFrameSize;
    }

    /// \return false when the packets can't stand as they are: one does not follow the one before, or some
    /// would be heard that the source hides.
    bool run(const std::function<void(double)>& progress) {
        const std::optional<TimeRange> shown = demuxer_.shownRange(source_.index);
        const std::int64_t begin = shown ? ticksAtOrBefore(shown->start, source_.time_base) : 0;
        const std::int64_t end = shown ? ticksAtOrBefore(shown->end(), source_.time_base)
                                       : std::numeric_limits<std::int64_t>::max();
        Packet packet = makePacket();
        bool begun = false;
        while (demuxer_.read(packet.get())) {
            if (packet->pts == AV_NOPTS_VALUE)
                return false;
            packet->pts -= zero_;
            const std::int64_t length = lengthOf(*packet);
            // What stands before time 0 is hidden in the copy too; a little of it lets the decoder settle.
            const bool runIn = packet->pts + length <= 0;
            if ((runIn && packet->pts + kRunInPackets * length < 0) || packet->pts >= end)
                continue;
            // Behind time 0 there is nothing to hide a packet with.
            const bool unheardInSource = packet->pts < begin || (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
            if (unheardInSource && packet->pts + length > 0)
                return false;
            if (!placed(*packet))
                return false;
            const double share = source_.duration > 0 ? static_cast<double>(packet->pts) /
                                                            static_cast<double>(source_.duration)
                                                      : 0.0;
            if (!filtered(packet.get()))
                continue;
            if (!begun && !beginFile())
                return false;
            begun = true;
            packet->stream_index = 0;
            packet->pos = -1;
            muxer_.write(packet.get(), {1, source_.codecpar->sample_rate});
            progress(std::clamp(share, 0.0, 1.0));
        }
        if (!begun)
            return false;
        muxer_.finish();
        return true;
    }

  private:
    bool beginFile() {
        // ADTS gets its description with the first packet.
        if (target_->codecpar->extradata_size == 0) {
            const std::size_t bytes = lastExtradata_.size();
            if (bytes == 0)
                return false;
            target_->codecpar->extradata =
                static_cast<std::uint8_t*>(av_mallocz(bytes + AV_INPUT_BUFFER_PADDING_SIZE));
            if (!target_->codecpar->extradata)
                throw std::bad_alloc();
            std::ranges::copy(lastExtradata_, target_->codecpar->extradata);
            target_->codecpar->extradata_size = static_cast<int>(bytes);
        }
        muxer_.writeHeader();
        return true;
    }

    bool filtered(AVPacket* packet) {
        packet->pts = packet->dts = nextSample_;
        packet->duration = samples_;
        nextSample_ += samples_;
        if (av_bsf_send_packet(filter_.get(), packet) < 0 || av_bsf_receive_packet(filter_.get(), packet) < 0)
            return false;
        std::size_t bytes = 0;
        if (const std::uint8_t* data = av_packet_get_side_data(packet, AV_PKT_DATA_NEW_EXTRADATA, &bytes))
            lastExtradata_.assign(data, data + bytes);
        return true;
    }

    std::int64_t lengthOf(const AVPacket& packet) const {
        if (packet.duration > 0)
            return packet.duration;
        return std::max<std::int64_t>(
            1, av_rescale_q(samples_, {1, source_.codecpar->sample_rate}, source_.time_base));
    }

    /// Packets are counted, not stamped: a clock of milliseconds would stretch one and shorten the next.
    bool placed(const AVPacket& packet) {
        const int rate = source_.codecpar->sample_rate;
        const std::int64_t stamped = samplesAtTicks(packet.pts, source_.time_base, rate);
        if (!counting_)
            nextSample_ = stamped;
        counting_ = true;
        const std::int64_t clock = av_rescale_q(1, source_.time_base, {1, rate}) + 1;
        return std::abs(stamped - nextSample_) <= 2 * clock;
    }

    Demuxer& demuxer_;
    AVStream& source_;
    std::int64_t zero_;
    BitstreamFilter filter_;
    Muxer muxer_;
    AVStream* target_ = nullptr;
    std::vector<std::uint8_t> lastExtradata_;
    std::int64_t samples_ = 0;     ///< in each packet
    std::int64_t nextSample_ = 0;  ///< where the next packet begins
    bool counting_ = false;
};

}  // namespace

bool copyAacTrack(const std::filesystem::path& source, int streamIndex,
                  const std::filesystem::path& destination, const std::function<void(double)>& progress,
                  std::stop_token stop) {
    const auto demuxer = Demuxer::open(source, stop, Demuxer::Interest::sound);
    const AVCodecParameters& codec = *demuxer->stream(streamIndex)->codecpar;
    if (codec.codec_id != AV_CODEC_ID_AAC || codec.sample_rate <= 0 || codec.ch_layout.nb_channels <= 0)
        return false;
    demuxer->select(streamIndex);
    PacketCopy copy(*demuxer, streamIndex, destination, stop);
    return copy.run(progress);
}

}  // namespace korvane
