#include <algorithm>
#include <cmath>
#include <functional>

#include "platform/ffmpeg/Demuxer.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MovieWriter.h"
#include "platform/ffmpeg/Muxer.h"

extern "C" {
#include <libavcodec/bsf.h>
}

namespace korvane {
namespace {

using BitstreamFilter = std::unique_ptr<AVBSFContext, FreeByAddress<av_bsf_free>>;

// A packet may begin this much of its own length away from where the one before ended; more is a gap or an
// overlap.
constexpr double kSteadiness = 0.75;

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
    }

    /// \return false at the first packet that does not follow the one before.
    bool run(const std::function<void(double)>& progress) {
        Packet packet = makePacket();
        bool begun = false;
        while (demuxer_.read(packet.get())) {
            if (packet->pts == AV_NOPTS_VALUE || !follows(*packet))
                return false;
            const double share = source_.duration > 0 ? static_cast<double>(packet->pts - zero_) /
                                                            static_cast<double>(source_.duration)
                                                      : 0.0;
            if (!filtered(packet.get()))
                continue;
            if (!begun && !begin())
                return false;
            begun = true;
            packet->stream_index = 0;
            packet->pos = -1;
            muxer_.write(packet.get(), source_.time_base);
            progress(std::clamp(share, 0.0, 1.0));
        }
        if (!begun)
            return false;
        muxer_.finish();
        return true;
    }

  private:
    bool begin() {
        // ADTS gets its description with the first packet.
        if (target_->codecpar->extradata_size == 0) {
            std::size_t bytes = 0;
            const std::uint8_t* found = lastExtradata_.empty() ? nullptr : lastExtradata_.data();
            bytes = lastExtradata_.size();
            if (!found)
                return false;
            target_->codecpar->extradata =
                static_cast<std::uint8_t*>(av_mallocz(bytes + AV_INPUT_BUFFER_PADDING_SIZE));
            if (!target_->codecpar->extradata)
                throw std::bad_alloc();
            std::copy_n(found, bytes, target_->codecpar->extradata);
            target_->codecpar->extradata_size = static_cast<int>(bytes);
        }
        muxer_.writeHeader();
        return true;
    }

    bool filtered(AVPacket* packet) {
        packet->pts -= zero_;
        packet->dts = packet->pts;
        if (av_bsf_send_packet(filter_.get(), packet) < 0 || av_bsf_receive_packet(filter_.get(), packet) < 0)
            return false;
        std::size_t bytes = 0;
        if (const std::uint8_t* data = av_packet_get_side_data(packet, AV_PKT_DATA_NEW_EXTRADATA, &bytes))
            lastExtradata_.assign(data, data + bytes);
        return true;
    }

    bool follows(const AVPacket& packet) {
        const std::int64_t length =
            packet.duration > 0 ? packet.duration
                                : av_rescale_q(1024, {1, source_.codecpar->sample_rate}, source_.time_base);
        const bool steady =
            expected_ == AV_NOPTS_VALUE || std::abs(static_cast<double>(packet.pts - expected_)) <=
                                               kSteadiness * static_cast<double>(length);
        // Counted on from what was expected, so that a slow drift shows too.
        expected_ = (expected_ == AV_NOPTS_VALUE ? packet.pts : std::max(packet.pts, expected_)) + length;
        return steady;
    }

    Demuxer& demuxer_;
    AVStream& source_;
    std::int64_t zero_;
    BitstreamFilter filter_;
    Muxer muxer_;
    AVStream* target_ = nullptr;
    std::vector<std::uint8_t> lastExtradata_;
    std::int64_t expected_ = AV_NOPTS_VALUE;
};

}  // namespace

bool copyAacTrack(const std::filesystem::path& source, int streamIndex,
                  const std::filesystem::path& destination, const std::function<void(double)>& progress,
                  std::stop_token stop) {
    const auto demuxer = Demuxer::open(source, stop);
    const AVCodecParameters& codec = *demuxer->stream(streamIndex)->codecpar;
    if (codec.codec_id != AV_CODEC_ID_AAC || codec.sample_rate <= 0 || codec.ch_layout.nb_channels <= 0)
        return false;
    demuxer->select(streamIndex);
    PacketCopy copy(*demuxer, streamIndex, destination, stop);
    return copy.run(progress);
}

}  // namespace korvane
