#include "platform/ffmpeg/VideoDecoder.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <limits>
#include <optional>

#include "platform/ffmpeg/CodecOpening.h"
#include "platform/ffmpeg/Demuxer.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/TimeConversion.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kUnknown = kNever + 1;

// How far behind the wanted time a file without an index has to be before a jump is tried (seconds).
constexpr int kBlindJumpSeconds = 5;
// Where leaving out pictures proved wrong this often (rates that vary much), it costs more than it saves.
constexpr int kUselessSkips = 4;
// A picture may stand this long after the last one of a shortened file before that is an error (seconds).
constexpr double kToleratedLossSeconds = 0.5;

class LibavVideoDecoder final : public VideoDecoder {
  public:
    LibavVideoDecoder(std::unique_ptr<Demuxer> demuxer, int streamIndex, CodecContext codec)
        : demuxer_(std::move(demuxer)),
          stream_(demuxer_->stream(streamIndex)),
          codec_(std::move(codec)),
          zero_(demuxer_->zeroTicks(streamIndex)),
          packet_(makePacket()),
          frame_(makeFrame()) {
        const AVRational rate = stream_->avg_frame_rate.num > 0 ? stream_->avg_frame_rate : AVRational{25, 1};
        if (const auto shown = demuxer_->shownRange(streamIndex))
            lastShown_ = ticksAtOrBefore(shown->end(), stream_->time_base) - 1;
        pictureTicks_ = std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(rate), stream_->time_base));
    }

    DecodedPicture pictureAt(MediaTime t) override {
        const std::int64_t target = std::min(ticksAtOrBefore(t, stream_->time_base) + zero_, lastShown_);
        if (current_ && target < current_.ticks && !currentIsFirst_)
            seekTo(target, 0);
        else if (!isShown(target) && jumpPays(target))
            seekTo(target, 0);
        decodeUpTo(target);
        for (int attempt = 1; (isAfter(target) && !atStart_) || skippedTooMuch(target); ++attempt) {
            if (skippedTooMuch(target))
                ++uselessSkips_;
            skippingAllowed_ = false;
            seekTo(target, attempt);
            decodeUpTo(target);
        }
        skippingAllowed_ = uselessSkips_ < kUselessSkips;
        if (!current_)
            throw MediaError("No picture of " + demuxer_->path().string() +
                             " can be decoded; the file is damaged.");
        checkNotCutShort(target);
        return current_;
    }

    std::int64_t decodedPictures() const override { return decoded_; }

  private:
    /// The picture at hand is known to be the right one: its successor comes later, or there is none.
    bool isShown(std::int64_t target) const {
        return current_ && current_.ticks <= target &&
               ((next_ && next_.ticks > target) || (!next_ && ended_));
    }
    /// Landed behind the wanted time.
    bool isAfter(std::int64_t target) const { return !current_ || current_.ticks > target; }
    /// A picture that nobody was to see was left out, but it may be the one that should be seen.
    bool skippedTooMuch(std::int64_t target) const {
        return lastSkipped_ != kNever && lastSkipped_ <= target &&
               (!current_ || lastSkipped_ > current_.ticks);
    }

    bool jumpPays(std::int64_t target) const {
        if (lastSent_ == kNever)
            return target - zero_ > pictureTicks_ * 2;
        if (ended_ || lastSent_ == kUnknown)
            return false;
        if (const auto key = demuxer_->keyPacketBefore(target); key && *key > lastSent_)
            return true;
        const std::int64_t blind = av_rescale_q(kBlindJumpSeconds, {1, 1}, stream_->time_base);
        return !demuxer_->isIsoMedia() && target - lastSent_ > blind;
    }

    /// Each further attempt goes back further, since an index may promise what decoding does not keep.
    void seekTo(std::int64_t target, int attempt) {
        constexpr int kBackSeconds[] = {0, 1, 5, 20, 120};
        const bool toStart = attempt >= static_cast<int>(std::size(kBackSeconds));
        const std::int64_t back = toStart ? 0
                                          : av_rescale_q(kBackSeconds[attempt], {1, 1}, stream_->time_base) +
                                                (attempt > 0 ? pictureTicks_ : 0);
        const std::int64_t wanted = toStart ? std::min(zero_, firstTicks()) : target - back;
        demuxer_->seek(wanted);
        atStart_ = toStart || wanted <= firstTicks();
        avcodec_flush_buffers(codec_.get());
        current_ = {};
        next_ = {};
        currentIsFirst_ = false;
        ended_ = draining_ = false;
        lastSent_ = kUnknown;
        lastTicks_ = lastSkipped_ = kNever;
    }
    std::int64_t firstTicks() const {
        return stream_->start_time == AV_NOPTS_VALUE ? zero_ : stream_->start_time;
    }

    void decodeUpTo(std::int64_t target) {
        while (!ended_ && !(next_ && next_.ticks > target)) {
            if (next_) {
                currentIsFirst_ = !current_ && atStart_;
                current_ = std::move(next_);
            }
            next_ = decodeNext(target);
            if (!next_)
                ended_ = true;
        }
        if (!current_ && next_) {
            currentIsFirst_ = atStart_;
            current_ = next_;
        }
    }

    /// The next picture in presentation order; none at the end.
    DecodedPicture decodeNext(std::int64_t target) {
        while (true) {
            const int received = avcodec_receive_frame(codec_.get(), frame_.get());
            if (received >= 0) {
                if (auto picture = taken())
                    return picture;
                continue;
            }
            if (received == AVERROR_EOF)
                return {};
            if (received == AVERROR(ENOMEM))
                throw std::bad_alloc();
            if (draining_) {
                if (received == AVERROR(EAGAIN))
                    return {};
                continue;  // a damaged picture at the end
            }
            feed(target);
        }
    }

    void feed(std::int64_t target) {
        if (!demuxer_->read(packet_.get())) {
            draining_ = true;
            codec_->skip_frame = AVDISCARD_DEFAULT;
            avcodec_send_packet(codec_.get(), nullptr);
            return;
        }
        const std::int64_t pts = packet_->pts;
        if (packet_->dts != AV_NOPTS_VALUE)
            lastSent_ = packet_->dts;
        else if (pts != AV_NOPTS_VALUE)
            lastSent_ = pts;
        // Pictures that nothing refers to and nobody will see need not be decoded. Which ones those are is
        // known only afterwards where rates vary, so the last one left out is remembered and checked.
        const bool skippable = skippingAllowed_ && pts != AV_NOPTS_VALUE && pts + 2 * pictureTicks_ < target;
        codec_->skip_frame = skippable ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        if (skippable)
            lastSkipped_ = std::max(lastSkipped_, pts);
        const int sent = avcodec_send_packet(codec_.get(), packet_.get());
        av_packet_unref(packet_.get());
        if (sent == AVERROR(ENOMEM))
            throw std::bad_alloc();
        // Any other refusal is a damaged packet: the decoder goes on with the next.
    }

    /// The received frame as a picture with a presentation time that never runs backwards.
    DecodedPicture taken() {
        // The library's own guess falls back to decoding times once stamps have run backwards.
        std::int64_t ticks = frame_->pts != AV_NOPTS_VALUE ? frame_->pts : frame_->best_effort_timestamp;
        if (ticks == AV_NOPTS_VALUE)
            ticks = lastTicks_ == kNever ? firstTicks() : lastTicks_ + pictureTicks_;
        if (lastTicks_ != kNever)
            ticks = std::max(ticks, lastTicks_);
        if (frame_->width <= 0 || frame_->height <= 0 || frame_->format < 0) {
            av_frame_unref(frame_.get());
            return {};
        }
        lastTicks_ = ticks;
        ++decoded_;
        Frame copy = makeFrame();
        av_frame_move_ref(copy.get(), frame_.get());
        return {std::shared_ptr<const AVFrame>(copy.release(), [](AVFrame* f) { av_frame_free(&f); }), ticks};
    }

    void checkNotCutShort(std::int64_t target) const {
        if (!ended_ || !current_ || target <= current_.ticks + pictureTicks_)
            return;
        const double missing = static_cast<double>(target - current_.ticks) * av_q2d(stream_->time_base);
        if (missing < kToleratedLossSeconds || !demuxer_->isCutShort())
            return;
        char text[96];
        std::snprintf(text, sizeof text, "%.1f",
                      static_cast<double>(current_.ticks - zero_) * av_q2d(stream_->time_base));
        throw MediaError(demuxer_->path().string() + " is incomplete: its picture ends at " + text +
                         " s, before the words that were chosen. Copy or download the file again.");
    }

    std::unique_ptr<Demuxer> demuxer_;
    AVStream* stream_;
    CodecContext codec_;
    std::int64_t zero_;
    Packet packet_;
    Frame frame_;
    std::int64_t pictureTicks_ = 1;
    std::int64_t lastShown_ =
        std::numeric_limits<std::int64_t>::max();  ///< an edit list may end before the pictures do
    DecodedPicture current_;
    DecodedPicture next_;
    std::int64_t lastSent_ = kNever;     ///< decoding time of the last packet sent
    std::int64_t lastTicks_ = kNever;    ///< presentation time of the last picture received
    std::int64_t lastSkipped_ = kNever;  ///< latest presentation time that was allowed to be left out
    bool currentIsFirst_ = false;
    bool atStart_ = true;
    bool ended_ = false;
    bool draining_ = false;
    bool skippingAllowed_ = true;
    int uselessSkips_ = 0;
    std::int64_t decoded_ = 0;
};

}  // namespace

std::unique_ptr<VideoDecoder> VideoDecoder::open(const std::filesystem::path& path, int streamIndex,
                                                 int threads, std::stop_token stop,
                                                 const std::shared_ptr<const KnownStreams>& known) {
    auto demuxer = Demuxer::open(path, std::move(stop), Demuxer::Interest::everything, known);
    CodecContext codec = openDecoder(*demuxer, streamIndex, threads);
    demuxer->select(streamIndex);
    return std::make_unique<LibavVideoDecoder>(std::move(demuxer), streamIndex, std::move(codec));
}

}  // namespace korvane
