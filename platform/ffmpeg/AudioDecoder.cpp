#include "platform/ffmpeg/AudioDecoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

extern "C" {
#include <libavutil/opt.h>
}

#include "platform/ffmpeg/CodecOpening.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/TimeConversion.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// Decoding begins this long before a sought position: codecs with memory (overlap, bit reservoirs, band
// replication) and the resampler's filter have settled by then.
constexpr double kSettlingSeconds = 0.35;
// Going on by decoding beats seeking up to this distance.
constexpr double kForwardSeconds = 1.5;

/// A run of samples with its place on the output's time line.
struct Block {
    std::int64_t start = 0;
    std::vector<float> samples;
    int channels = 1;
    std::int64_t end() const { return start + static_cast<std::int64_t>(samples.size()) / channels; }
};

// Far above what any mixing matrix adds up to.
constexpr double kNoNormalisation = 1000.0;
// Mixed samples are bent from here on so that they stay below full scale.
constexpr float kStraightUpTo = 0.8F;

/// Memoryless, so that a sample does not depend on what came before it.
void bendBelowFullScale(std::span<float> samples) {
    for (float& sample : samples) {
        const float size = std::abs(sample);
        if (size <= kStraightUpTo)
            continue;
        const float room = 1.0F - kStraightUpTo;
        sample = std::copysign(kStraightUpTo + room * std::tanh((size - kStraightUpTo) / room), sample);
    }
}

bool sameShape(const AVFrame& a, const AVChannelLayout& layout, int rate, int format) {
    return a.sample_rate == rate && a.format == format &&
           av_channel_layout_compare(&a.ch_layout, &layout) == 0;
}

class LibavAudioDecoder final : public AudioDecoder {
  public:
    LibavAudioDecoder(std::unique_ptr<Demuxer> demuxer, int streamIndex, CodecContext codec,
                      AudioFormat format)
        : demuxer_(std::move(demuxer)),
          stream_(demuxer_->stream(streamIndex)),
          codec_(std::move(codec)),
          format_(format),
          zero_(demuxer_->zeroTicks(streamIndex)),
          packet_(makePacket()),
          frame_(makeFrame()) {}

    ~LibavAudioDecoder() override { av_channel_layout_uninit(&inputLayout_); }

    AudioFormat format() const override { return format_; }

    std::int64_t read(std::int64_t position, std::span<float> out) override {
        const std::int64_t count = static_cast<std::int64_t>(out.size()) / format_.channels;
        std::fill(out.begin(), out.end(), 0.0F);
        if (mustSeek(position))
            seekTo(position);
        while (!ended_ && decodedTo_ < position + count)
            decodeSome();
        while (!blocks_.empty() && blocks_.front().end() <= position)
            blocks_.pop_front();
        for (const Block& block : blocks_)
            copyOverlap(block, position, count, out);
        lastEnd_ = position + count;
        if (!ended_)
            return count;
        return std::clamp<std::int64_t>(decodedTo_ - position, 0, count);
    }

  private:
    bool mustSeek(std::int64_t position) const {
        if (position == lastEnd_)
            return false;
        if (position < lastEnd_)
            return true;
        return !ended_ && position > decodedTo_ + static_cast<std::int64_t>(kForwardSeconds * format_.rateHz);
    }

    void copyOverlap(const Block& block, std::int64_t position, std::int64_t count,
                     std::span<float> out) const {
        const std::int64_t from = std::max(block.start, position);
        const std::int64_t to = std::min(block.end(), position + count);
        if (from >= to)
            return;
        std::copy_n(block.samples.begin() + (from - block.start) * format_.channels,
                    (to - from) * format_.channels, out.begin() + (from - position) * format_.channels);
    }

    void seekTo(std::int64_t position) {
        const double seconds = static_cast<double>(position) / format_.rateHz - kSettlingSeconds;
        const auto wanted =
            static_cast<std::int64_t>(std::floor(seconds / av_q2d(stream_->time_base))) + zero_;
        const std::int64_t first = stream_->start_time == AV_NOPTS_VALUE ? zero_ : stream_->start_time;
        demuxer_->seek(std::max(wanted, std::min(first, zero_)));
        avcodec_flush_buffers(codec_.get());
        resampler_.reset();
        blocks_.clear();
        nextInput_.reset();
        ended_ = draining_ = false;
        decodedTo_ = std::numeric_limits<std::int64_t>::min();
    }

    void decodeSome() {
        const int received = avcodec_receive_frame(codec_.get(), frame_.get());
        if (received >= 0) {
            take(*frame_);
            av_frame_unref(frame_.get());
            return;
        }
        if (received == AVERROR(ENOMEM))
            throw std::bad_alloc();
        if (received == AVERROR_EOF || draining_) {
            flushResampler();
            ended_ = true;
            if (decodedTo_ == std::numeric_limits<std::int64_t>::min())
                decodedTo_ = lengthFromHeader();
            return;
        }
        if (!demuxer_->read(packet_.get())) {
            draining_ = true;
            avcodec_send_packet(codec_.get(), nullptr);
            return;
        }
        if (avcodec_send_packet(codec_.get(), packet_.get()) == AVERROR(ENOMEM))
            throw std::bad_alloc();
        av_packet_unref(packet_.get());
    }

    /// Where the track ends when a seek found nothing behind the position: all that is left is the header's
    /// word.
    std::int64_t lengthFromHeader() const {
        if (stream_->duration == AV_NOPTS_VALUE)
            return 0;
        const std::int64_t start = stream_->start_time == AV_NOPTS_VALUE ? zero_ : stream_->start_time;
        return samplesAtTicks(start - zero_ + stream_->duration, stream_->time_base, format_.rateHz);
    }

    /// First sample's position of `frame` on the source's own sample grid.
    std::int64_t inputPosition(const AVFrame& frame) {
        const int rate = frame.sample_rate;
        const std::int64_t ticks = frame.pts != AV_NOPTS_VALUE ? frame.pts : frame.best_effort_timestamp;
        if (ticks == AV_NOPTS_VALUE)
            return nextInput_.value_or(0);
        const std::int64_t stamped = samplesAtTicks(ticks - zero_, stream_->time_base, rate);
        // One tick of the file's clock, in samples: stamps can't tell positions apart that are nearer than
        // that.
        const std::int64_t blur =
            std::max<std::int64_t>(1, av_rescale_q(1, stream_->time_base, {1, rate}) + 1);
        if (nextInput_ && inputRate_ != rate)
            nextInput_.reset();
        // A stamp that falls back by more than this frame is a broken clock, not an overlap.
        if (nextInput_ && stamped + frame.nb_samples < *nextInput_)
            return *nextInput_;
        if (nextInput_ && std::abs(stamped - *nextInput_) <= 2 * blur)
            return *nextInput_;
        // Frames of one size stand on a grid from the first on; that is finer than a coarse clock and the
        // same from wherever decoding began.
        const std::int64_t size = codec_->frame_size > 0 ? codec_->frame_size : frame.nb_samples;
        if (size > 0 && stream_->start_time != AV_NOPTS_VALUE) {
            const std::int64_t first = samplesAtTicks(stream_->start_time - zero_, stream_->time_base, rate);
            const std::int64_t steps =
                static_cast<std::int64_t>(std::llround(static_cast<double>(stamped - first) / size));
            const std::int64_t onGrid = first + steps * size;
            if (std::abs(onGrid - stamped) <= blur)
                return onGrid;
        }
        return stamped;
    }

    void take(const AVFrame& frame) {
        if (frame.nb_samples <= 0 || frame.sample_rate <= 0)
            return;
        std::int64_t position = inputPosition(frame);
        const bool continues = resampler_ && nextInput_ && position == *nextInput_ &&
                               sameShape(frame, inputLayout_, inputRate_, inputFormat_);
        int skip = 0;
        if (!continues) {
            const bool overlaps = nextInput_ && inputRate_ == frame.sample_rate && position < *nextInput_;
            if (overlaps)
                skip = static_cast<int>(std::min<std::int64_t>(frame.nb_samples, *nextInput_ - position));
            flushResampler();
            if (skip == frame.nb_samples)
                return;
            skip += startResampler(frame, position + skip);
            if (skip >= frame.nb_samples) {
                resampler_.reset();
                nextInput_ = position + frame.nb_samples;
                inputRate_ = frame.sample_rate;
                return;
            }
        }
        nextInput_ = position + frame.nb_samples;
        push(frame, skip);
    }

    /// Starts a resampler whose first input sample stands where an output sample stands too, so that the
    /// output does not depend on where decoding began. \return samples to leave out of the frame until that
    /// place.
    int startResampler(const AVFrame& frame, std::int64_t inputStart) {
        av_channel_layout_uninit(&inputLayout_);
        if (av_channel_layout_copy(&inputLayout_, &frame.ch_layout) < 0)
            throw std::bad_alloc();
        inputRate_ = frame.sample_rate;
        inputFormat_ = frame.format;
        AVChannelLayout from{};
        if (inputLayout_.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&from, inputLayout_.nb_channels);
        else
            av_channel_layout_copy(&from, &inputLayout_);
        AVChannelLayout to{};
        av_channel_layout_default(&to, format_.channels);
        SwrContext* context = nullptr;
        int result =
            swr_alloc_set_opts2(&context, &to, AV_SAMPLE_FMT_FLT, format_.rateHz, &from,
                                static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
        resampler_.reset(context);
        if (result >= 0 && from.order == AV_CHANNEL_ORDER_UNSPEC)
            result = setEvenMix(context, from.nb_channels);
        // A voice keeps its loudness when many channels become two; the rare sum above full scale is bent
        // below.
        if (result >= 0)
            result = av_opt_set_double(context, "rematrix_maxval", kNoNormalisation, 0);
        if (result >= 0)
            result = swr_init(context);
        av_channel_layout_uninit(&from);
        av_channel_layout_uninit(&to);
        if (result < 0)
            throwMediaError(result, "Converting the sound of", demuxer_->path());

        const std::int64_t step = frame.sample_rate / std::gcd(frame.sample_rate, format_.rateHz);
        const std::int64_t into = ((inputStart % step) + step) % step;
        const std::int64_t leaveOut = into == 0 ? 0 : step - into;
        nextOutput_ =
            (inputStart + leaveOut) / step * (format_.rateHz / std::gcd(frame.sample_rate, format_.rateHz));
        return static_cast<int>(std::min<std::int64_t>(leaveOut, frame.nb_samples));
    }

    /// Channels nobody knows the places of: each goes to every output alike.
    int setEvenMix(SwrContext* context, int channels) const {
        std::vector<double> matrix(static_cast<std::size_t>(channels) * format_.channels, 1.0 / channels);
        return swr_set_matrix(context, matrix.data(), channels);
    }

    void push(const AVFrame& frame, int skip) {
        const int bytes = av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame.format));
        const bool planar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0;
        const int channels = frame.ch_layout.nb_channels;
        std::vector<const std::uint8_t*> planes(planar ? static_cast<std::size_t>(channels) : 1);
        for (std::size_t i = 0; i < planes.size(); ++i)
            planes[i] =
                frame.extended_data[i] + static_cast<std::ptrdiff_t>(skip) * bytes * (planar ? 1 : channels);
        convert(planes.data(), frame.nb_samples - skip);
    }

    void convert(const std::uint8_t** input, int samples) {
        const int room = swr_get_out_samples(resampler_.get(), samples);
        if (room <= 0)
            return;
        Block block;
        block.channels = format_.channels;
        block.start = nextOutput_;
        block.samples.resize(static_cast<std::size_t>(room) * static_cast<std::size_t>(format_.channels));
        auto* output = reinterpret_cast<std::uint8_t*>(block.samples.data());
        const int made = swr_convert(resampler_.get(), &output, room, input, samples);
        if (made < 0)
            throwMediaError(made, "Converting the sound of", demuxer_->path());
        block.samples.resize(static_cast<std::size_t>(made) * static_cast<std::size_t>(format_.channels));
        if (inputLayout_.nb_channels > 2)
            bendBelowFullScale(block.samples);
        nextOutput_ += made;
        decodedTo_ = std::max(decodedTo_, nextOutput_);
        if (made > 0)
            blocks_.push_back(std::move(block));
    }

    void flushResampler() {
        if (!resampler_)
            return;
        convert(nullptr, 0);
        resampler_.reset();
    }

    std::unique_ptr<Demuxer> demuxer_;
    AVStream* stream_;
    CodecContext codec_;
    AudioFormat format_;
    std::int64_t zero_;
    Packet packet_;
    Frame frame_;
    Resampler resampler_;
    AVChannelLayout inputLayout_{};
    int inputRate_ = 0;
    int inputFormat_ = -1;
    std::optional<std::int64_t> nextInput_;  ///< where the next frame goes on, on the source's sample grid
    std::int64_t nextOutput_ = 0;            ///< where the resampler's next sample goes
    std::deque<Block> blocks_;               ///< decoded, by start, not yet behind the reader
    std::int64_t decodedTo_ = std::numeric_limits<std::int64_t>::min();
    std::int64_t lastEnd_ = 0;
    bool ended_ = false;
    bool draining_ = false;
};

int firstAudioStream(const Demuxer& demuxer) {
    for (unsigned i = 0; i < demuxer.format()->nb_streams; ++i)
        if (demuxer.stream(static_cast<int>(i))->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            return static_cast<int>(i);
    throw MediaError(demuxer.path().string() + " has no sound.");
}

}  // namespace

std::unique_ptr<AudioDecoder> AudioDecoder::open(const std::filesystem::path& path, int streamIndex,
                                                 AudioFormat format, std::stop_token stop) {
    auto demuxer = Demuxer::open(path, std::move(stop), Demuxer::Interest::sound);
    const int index = streamIndex < 0 ? firstAudioStream(*demuxer) : streamIndex;
    CodecContext codec = openDecoder(*demuxer, index, 1);
    demuxer->select(index);
    return std::make_unique<LibavAudioDecoder>(std::move(demuxer), index, std::move(codec), format);
}

}  // namespace korvane
