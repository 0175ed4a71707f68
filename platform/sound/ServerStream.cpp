#include "platform/sound/ServerStream.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvane {
namespace {

using namespace std::chrono_literals;

// How far ahead of what the device has taken a player may write, all of which lies at the server: a program
// that gets no processor for a while is heard all the same. The device's own part does not count; wireless
// ones hold a third of a second.
constexpr double kAheadSeconds = 0.3;
// From this the server makes the device's part, 40 ms where the device leaves it the choice. Some servers
// tell the time no more finely than that.
constexpr double kTargetSeconds = 0.12;
constexpr double kRequestSeconds = 0.02;
constexpr ClockTime kAskTimeEvery = 20ms;
// A server that is late by this much is as good as none, and pictures should not wait for it.
constexpr ClockTime kAnswersWithin = 500ms;
// A device wakes up for a stream within this time, unless a person or another session keeps it asleep.
constexpr ClockTime kWakesWithin = 600ms;

ClockTime steadyNow() {
    return std::chrono::duration_cast<ClockTime>(std::chrono::steady_clock::now().time_since_epoch());
}

pa_sample_spec specOf(AudioFormat format) {
    return {PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(format.rateHz),
            static_cast<std::uint8_t>(format.channels)};
}

void leaveOnceMade(pa_stream* stream, void*) {
    if (pa_stream_get_state(stream) == PA_STREAM_READY)
        pa_stream_disconnect(stream);
}

}  // namespace

ServerStream::ServerStream(AudioFormat format, std::function<void()> wake)
    : format_(format), wake_(std::move(wake)) {}

ServerStream::~ServerStream() {
    disconnect();
}

std::int64_t ServerStream::room() {
    const std::scoped_lock lock(mutex_);
    const auto ahead = static_cast<std::int64_t>(kAheadSeconds * format_.rateHz);
    return dead_ ? 0 : std::max<std::int64_t>(0, ahead - (written_ - heard_.frames - inDevice_));
}

void ServerStream::write(std::span<const float> samples) {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.insert(waiting_.end(), samples.begin(), samples.end());
        written_ += static_cast<std::int64_t>(samples.size()) / format_.channels;
    }
    wake_();
}

void ServerStream::flush() {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.clear();
        written_ = 0;
        heard_ = {};
        inDevice_ = 0;
        ++flushes_;
    }
    wake_();
}

HeardFrames ServerStream::heard() {
    const std::scoped_lock lock(mutex_);
    return heard_;
}

void ServerStream::close() {
    closed_ = true;
    wake_();
}

ClockTime ServerStream::work(pa_context* context, ClockTime now) {
    if (dead_ || closed_) {
        drop();
        return kNoClockTime;
    }
    restart();
    if (!stream_)
        connect(context);
    if (!stream_ || !PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) {
        drop();
        return kNoClockTime;
    }
    if (!isReady())
        return kNoClockTime;  // the server's answer wakes the thread
    deliver();
    watch(now);
    if (dead_ || !plays_)
        return kNoClockTime;
    if (!question_ && now >= askAt_)
        askTime(now);
    return question_ ? now + kAskTimeEvery : askAt_;
}

void ServerStream::drop() {
    dead_ = true;
    disconnect();
}

bool ServerStream::isReady() const {
    return pa_stream_get_state(stream_) == PA_STREAM_READY;
}

/// A flush begins another stream: that silences every server at once and makes all counting start over. It is
/// made ready silent, so that the next sound needs no more than to be let go.
void ServerStream::restart() {
    {
        const std::scoped_lock lock(mutex_);
        if (flushesDone_ == flushes_)
            return;
        flushesDone_ = flushes_;
    }
    disconnect();
}

void ServerStream::connect(pa_context* context) {
    const pa_sample_spec spec = specOf(format_);
    pa_channel_map map;
    if (!pa_sample_spec_valid(&spec) ||
        !pa_channel_map_init_extend(&map, spec.channels, PA_CHANNEL_MAP_WAVEEX))
        return;
    pa_proplist* const properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "video");
    stream_ = pa_stream_new_with_proplist(context, "Preview", &spec, &map, properties);
    pa_proplist_free(properties);
    if (!stream_)
        return;
    pa_stream_set_underflow_callback(
        stream_, [](pa_stream*, void* self) { ++static_cast<ServerStream*>(self)->underruns_; }, this);
    pa_buffer_attr buffer;
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    const auto bytes = [&](double seconds) {
        return static_cast<std::uint32_t>(pa_usec_to_bytes(static_cast<pa_usec_t>(seconds * 1e6), &spec));
    };
    buffer.tlength = bytes(kTargetSeconds);
    // Anything is enough to begin with: an item may be shorter than every buffer.
    buffer.prebuf = static_cast<std::uint32_t>(pa_frame_size(&spec));
    buffer.minreq = bytes(kRequestSeconds);
    buffer.fragsize = static_cast<std::uint32_t>(-1);
    // No device is named: the server plays it on its default and moves it along when that changes.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY);
    if (pa_stream_connect_playback(stream_, nullptr, &buffer, flags, nullptr, nullptr) < 0)
        disconnect();
}

void ServerStream::disconnect() {
    given_ = 0;
    underruns_ = 0;
    plays_ = false;
    askAt_ = ClockTime(0);
    if (question_) {
        pa_operation_cancel(question_);
        pa_operation_unref(std::exchange(question_, nullptr));
    }
    if (!stream_)
        return;
    pa_stream_set_underflow_callback(stream_, nullptr, nullptr);
    // One that the server is still making can't leave yet, and would stay for as long as the connection does.
    if (pa_stream_get_state(stream_) == PA_STREAM_CREATING)
        pa_stream_set_state_callback(stream_, leaveOnceMade, nullptr);
    else
        pa_stream_disconnect(stream_);
    pa_stream_unref(std::exchange(stream_, nullptr));
}

void ServerStream::deliver() {
    std::vector<float> samples;
    {
        const std::scoped_lock lock(mutex_);
        if (flushesDone_ != flushes_)
            return;
        samples.swap(waiting_);
    }
    if (samples.empty())
        return;
    if (pa_stream_write(stream_, samples.data(), samples.size() * sizeof(float), nullptr, 0,
                        PA_SEEK_RELATIVE) < 0)
        return drop();
    given_ += static_cast<std::int64_t>(samples.size()) / format_.channels;
    if (std::exchange(plays_, true))
        return;
    awakeAt_ = steadyNow();
    if (pa_operation* const done = pa_stream_cork(stream_, 0, nullptr, nullptr))
        pa_operation_unref(done);
}

/// Gives up what will not be heard, or not in time.
void ServerStream::watch(ClockTime now) {
    if (!plays_ || pa_stream_is_suspended(stream_) <= 0)
        awakeAt_ = now;
    if (question_ && now - askedAt_ > kAnswersWithin)
        trouble_ = Trouble::noAnswer;
    else if (now - awakeAt_ > kWakesWithin)
        trouble_ = Trouble::sleepingDevice;
    if (trouble_ != Trouble::none)
        drop();
}

void ServerStream::askTime(ClockTime now) {
    askedAt_ = now;
    askAt_ = now + kAskTimeEvery;
    question_ = pa_stream_update_timing_info(
        stream_,
        [](pa_stream*, int success, void* self) {
            auto* const stream = static_cast<ServerStream*>(self);
            pa_operation_unref(std::exchange(stream->question_, nullptr));
            if (success)
                stream->report();
        },
        this);
}

/// What the server's answer says has been heard. The library's own interpolation is left out: it takes a
/// second to settle and smooths a device that stood still into one that runs slowly.
void ServerStream::report() {
    const pa_timing_info* const info = pa_stream_get_timing_info(stream_);
    if (!info || info->read_index_corrupt)
        return;
    const auto frameBytes = static_cast<std::int64_t>(pa_frame_size(pa_stream_get_sample_spec(stream_)));
    const std::int64_t taken = info->read_index / frameBytes;
    const auto inDevice = std::llround(static_cast<double>(info->sink_usec) * 1e-6 * format_.rateHz);
    const std::int64_t sinceBreak = static_cast<std::int64_t>(info->since_underrun) / frameBytes;
    // Before and behind a stretch of sound the device holds silence, which is none of ours.
    const std::int64_t unheard = info->playing != 0 ? std::min<std::int64_t>(inDevice, sinceBreak)
                                                    : std::max<std::int64_t>(0, inDevice - sinceBreak);
    const ClockTime age =
        std::min<ClockTime>(std::chrono::microseconds(pa_timeval_age(&info->timestamp)), 1s);
    const std::scoped_lock lock(mutex_);
    if (flushesDone_ != flushes_)
        return;
    heard_.underruns = underruns_;
    inDevice_ = unheard;
    const std::int64_t heard = std::min(taken - unheard, given_);
    if (heard > heard_.frames)
        heard_ = {heard, steadyNow() - age, underruns_};
}

}  // namespace korvane
