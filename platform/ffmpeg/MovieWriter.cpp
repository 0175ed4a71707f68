#include "platform/ffmpeg/MovieWriter.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cstring>

#include "platform/ffmpeg/EncoderSettings.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/Muxer.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

class LibavMovieWriter final : public MovieWriter {
  public:
    LibavMovieWriter(const std::filesystem::path& destination, std::optional<VideoEncoding> video,
                     std::optional<AudioFormat> audio, const std::stop_token& stop)
        : muxer_(destination, video ? "mp4" : "ipod", stop),
          stop_(stop),
          destination_(destination),
          packet_(makePacket()) {
        if (video)
            openVideo(*video);
        if (audio)
            openAudio(*audio);
        muxer_.writeHeader();
    }

    void writeVideo(const std::shared_ptr<AVFrame>& picture) override {
        picture->pts = pictures_++;
        picture->pict_type = AV_PICTURE_TYPE_NONE;
        encode(*video_, *videoStream_, picture.get());
    }

    void writeAudio(std::span<const float> samples) override {
        pending_.insert(pending_.end(), samples.begin(), samples.end());
        const std::size_t block =
            static_cast<std::size_t>(audio_->frame_size) * static_cast<std::size_t>(audioFormat_.channels);
        std::size_t used = 0;
        for (; pending_.size() - used >= block; used += block)
            encodeSound(std::span(pending_).subspan(used, block));
        pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(used));
    }

    void finish() override {
        if (video_)
            encode(*video_, *videoStream_, nullptr);
        if (audio_) {
            if (!pending_.empty())
                encodeSound(pending_);
            encode(*audio_, *audioStream_, nullptr);
        }
        checkCancelled(stop_);
        muxer_.finish();
    }

  private:
    CodecContext encoderNamed(const char* name) {
        const AVCodec* codec = avcodec_find_encoder_by_name(name);
        if (!codec)
            throw MediaError(std::string("The media libraries here lack the encoder ") + name + ".");
        return owned<CodecContext>(avcodec_alloc_context3(codec));
    }

    void openVideo(const VideoEncoding& v) {
        video_ = encoderNamed("libx264");
        AVCodecContext& c = *video_;
        c.width = v.width;
        c.height = v.height;
        c.pix_fmt = AV_PIX_FMT_YUV420P;
        c.time_base = {1, v.framesPerSecond};
        c.framerate = {v.framesPerSecond, 1};
        c.gop_size = kLongestGroupSeconds * v.framesPerSecond;
        c.sample_aspect_ratio = {1, 1};
        c.color_range = AVCOL_RANGE_MPEG;
        c.colorspace = AVCOL_SPC_BT709;
        c.color_primaries = AVCOL_PRI_BT709;
        c.color_trc = AVCOL_TRC_BT709;
        c.chroma_sample_location = AVCHROMA_LOC_LEFT;
        c.flags |= AV_CODEC_FLAG_CLOSED_GOP | AV_CODEC_FLAG_GLOBAL_HEADER;
        c.thread_count = 0;
        av_opt_set(c.priv_data, "preset", kVideoPreset, 0);
        av_opt_set(c.priv_data, "crf", kVideoQuality, 0);
        av_opt_set(c.priv_data, "profile", "high", 0);
        // What makes it High; the quickest presets would leave these out.
        av_opt_set(c.priv_data, "coder", "cabac", 0);
        av_opt_set_int(c.priv_data, "8x8dct", 1, 0);
        videoStream_ = opened(c);
        videoStream_->avg_frame_rate = c.framerate;
        videoStream_->sample_aspect_ratio = {1, 1};
    }

    void openAudio(const AudioFormat& a) {
        audioFormat_ = a;
        audio_ = encoderNamed("aac");
        AVCodecContext& c = *audio_;
        c.sample_rate = a.rateHz;
        av_channel_layout_default(&c.ch_layout, a.channels);
        c.sample_fmt = AV_SAMPLE_FMT_FLTP;
        c.bit_rate = a.channels == 1 ? kMonoBitRate : kStereoBitRate;
        c.time_base = {1, a.rateHz};
        c.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        audioStream_ = opened(c);
    }

    AVStream* opened(AVCodecContext& c) {
        int result = avcodec_open2(&c, nullptr, nullptr);
        if (result < 0)
            throwMediaError(result, "Preparing to write", destination_);
        AVStream* stream = muxer_.addStream();
        stream->time_base = c.time_base;
        result = avcodec_parameters_from_context(stream->codecpar, &c);
        if (result < 0)
            throwMediaError(result, "Preparing to write", destination_);
        return stream;
    }

    void encodeSound(std::span<const float> interleaved) {
        const int channels = audioFormat_.channels;
        Frame frame = makeFrame();
        frame->format = AV_SAMPLE_FMT_FLTP;
        frame->nb_samples = static_cast<int>(interleaved.size()) / channels;
        frame->sample_rate = audioFormat_.rateHz;
        av_channel_layout_copy(&frame->ch_layout, &audio_->ch_layout);
        if (av_frame_get_buffer(frame.get(), 0) < 0)
            throw std::bad_alloc();
        for (int c = 0; c < channels; ++c) {
            auto* plane = reinterpret_cast<float*>(frame->extended_data[c]);
            for (int i = 0; i < frame->nb_samples; ++i)
                plane[i] = interleaved[static_cast<std::size_t>(i * channels + c)];
        }
        frame->pts = samples_;
        samples_ += frame->nb_samples;
        encode(*audio_, *audioStream_, frame.get());
    }

    void encode(AVCodecContext& codec, const AVStream& stream, const AVFrame* frame) {
        checkCancelled(stop_);
        int result = avcodec_send_frame(&codec, frame);
        while (result >= 0) {
            result = avcodec_receive_packet(&codec, packet_.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
                return;
            if (result < 0)
                break;
            checkCancelled(stop_);
            packet_->stream_index = stream.index;
            muxer_.write(packet_.get(), codec.time_base);
        }
        throwMediaError(result, "Encoding", destination_);
    }

    Muxer muxer_;
    std::stop_token stop_;
    std::filesystem::path destination_;
    Packet packet_;
    CodecContext video_;
    CodecContext audio_;
    AVStream* videoStream_ = nullptr;
    AVStream* audioStream_ = nullptr;
    AudioFormat audioFormat_;
    std::vector<float> pending_;
    std::int64_t pictures_ = 0;
    std::int64_t samples_ = 0;
};

}  // namespace

std::unique_ptr<MovieWriter> MovieWriter::open(const std::filesystem::path& destination,
                                               std::optional<VideoEncoding> video,
                                               std::optional<AudioFormat> audio, std::stop_token stop) {
    return std::make_unique<LibavMovieWriter>(destination, video, audio, stop);
}

}  // namespace korvane
