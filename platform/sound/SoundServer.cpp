#include "platform/sound/SoundServer.h"

#include <pulse/pulseaudio.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr ClockTime kConnectEvery = 1s;
constexpr ClockTime kAskEvery = 500ms;
// A server that has not answered for this long plays nothing either.
constexpr ClockTime kHangsAfter = 1s;
// A healthy server has answered by then.
constexpr ClockTime kFirstDecision = 100ms;
// Who has asked for a stream in vain asks again.
constexpr ClockTime kStaysWanted = 10s;

ClockTime steadyNow() {
    return std::chrono::duration_cast<ClockTime>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace

bool SoundServer::Observers::areThere() {
    const std::scoped_lock lock(mutex);
    return !list.empty();
}

void SoundServer::Observers::call() {
    const std::scoped_lock lock(mutex);
    for (const auto& [token, changed] : list)
        changed();
}

SoundServer::SoundServer() : wakeFd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread_([this] { run(); }) {}

SoundServer::~SoundServer() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    wake();
    thread_.join();
    close(wakeFd_);
}

std::shared_ptr<ServerStream> SoundServer::open(AudioFormat format) {
    std::unique_lock lock(mutex_);
    wantedAt_ = steadyNow();
    wake();
    decision_.wait_for(lock, kFirstDecision, [this] { return decided_; });
    decided_ = true;  // a server that hangs is waited for only once
    missed_ = missed_ || !available_;
    if (!available_)
        return nullptr;
    streams_.push_back(std::make_shared<ServerStream>(format, [this] { wake(); }));
    wake();
    return streams_.back();
}

std::shared_ptr<void> SoundServer::observe(std::function<void()> changed) {
    auto token = std::make_shared<char>();
    const void* const key = token.get();
    {
        const std::scoped_lock lock(observers_->mutex);
        observers_->list.emplace_back(key, std::move(changed));
    }
    wake();
    return {token.get(), [token, observers = observers_, key](const void*) {
                const std::scoped_lock lock(observers->mutex);
                std::erase_if(observers->list, [key](const auto& o) { return o.first == key; });
            }};
}

void SoundServer::wake() {
    const eventfd_t one = 1;
    eventfd_write(wakeFd_, one);
}

void SoundServer::run() {
    loop_ = pa_mainloop_new();
    pa_mainloop_api* const api = pa_mainloop_get_api(loop_);
    pa_io_event* const woken = api->io_new(
        api, wakeFd_, PA_IO_EVENT_INPUT,
        [](pa_mainloop_api*, pa_io_event*, int fd, pa_io_event_flags_t, void*) {
            eventfd_t count = 0;
            eventfd_read(fd, &count);
        },
        nullptr);
    while (true) {
        {
            const std::scoped_lock lock(mutex_);
            if (stopping_)
                break;
        }
        const ClockTime next = work(steadyNow());
        const auto wait = std::chrono::ceil<std::chrono::microseconds>(next - steadyNow());
        const int timeout = next == kNoClockTime
                                ? -1
                                : static_cast<int>(std::clamp<std::int64_t>(wait.count(), 0, 1'000'000));
        if (pa_mainloop_prepare(loop_, timeout) < 0 || pa_mainloop_poll(loop_) < 0 ||
            pa_mainloop_dispatch(loop_) < 0)
            break;
    }
    disconnect();
    api->io_free(woken);
    pa_mainloop_free(loop_);
}

bool SoundServer::isWanted(ClockTime now) {
    if (observers_->areThere())
        return true;
    const std::scoped_lock lock(mutex_);
    return !streams_.empty() || (wantedAt_ >= ClockTime(0) && now - wantedAt_ < kStaysWanted);
}

/// \return when to look again.
ClockTime SoundServer::work(ClockTime now) {
    if (context_ && !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_))) {
        disconnect();
        decide(false);
    }
    const bool wanted = isWanted(now);
    if (!context_) {
        if (!wanted)
            return kNoClockTime;
        if (now < connectAt_)
            return connectAt_;
        connect(now);
        if (!context_)
            return connectAt_;
    }
    if (pa_context_get_state(context_) != PA_CONTEXT_READY)
        return kNoClockTime;  // its next state wakes the thread
    if (wanted && !question_ && now >= askAt_)
        askDevice(now);
    hangs_ = hangs_ || (question_ && now - askedAt_ > kHangsAfter);
    const ClockTime streams = workOnStreams(now);
    decide(deviceThere_ && !asleep_ && !hangs_);
    if (!wanted && !question_)
        return streams;
    return std::min(streams, question_ ? now + kAskEvery : askAt_);
}

void SoundServer::connect(ClockTime now) {
    connectAt_ = now + kConnectEvery;
    context_ = pa_context_new(pa_mainloop_get_api(loop_), "Korvane");
    if (!context_)
        return decide(false);
    // Sockets that start a server by themselves do so all the same; starting one from here would fork.
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0)
        return;
    disconnect();
    decide(false);
}

void SoundServer::disconnect() {
    {
        const std::scoped_lock lock(mutex_);
        for (const auto& stream : streams_)
            stream->drop();
        streams_.clear();
    }
    deviceThere_ = asleep_ = hangs_ = false;
    askAt_ = ClockTime(0);
    if (question_) {
        pa_operation_cancel(question_);
        pa_operation_unref(std::exchange(question_, nullptr));
    }
    if (!context_)
        return;
    pa_context_disconnect(context_);
    pa_context_unref(std::exchange(context_, nullptr));
}

/// Also tells whether the server still answers.
void SoundServer::askDevice(ClockTime now) {
    askedAt_ = now;
    askAt_ = now + kAskEvery;
    question_ = pa_context_get_sink_info_by_name(
        context_, "@DEFAULT_SINK@",
        [](pa_context*, const pa_sink_info* sink, int end, void* self) {
            auto* const server = static_cast<SoundServer*>(self);
            if (end == 0)
                return server->noteDevice(true, sink->state == PA_SINK_SUSPENDED);
            if (end < 0)
                server->noteDevice(false, false);
            pa_operation_unref(std::exchange(server->question_, nullptr));
        },
        this);
}

/// A device that nobody uses sleeps too, and wakes up for a stream: only a stream can tell that it doesn't.
void SoundServer::noteDevice(bool there, bool isAsleep) {
    deviceThere_ = there;
    asleep_ = asleep_ && isAsleep;
    hangs_ = false;
}

ClockTime SoundServer::workOnStreams(ClockTime now) {
    std::vector<std::shared_ptr<ServerStream>> streams;
    {
        const std::scoped_lock lock(mutex_);
        streams = streams_;
    }
    ClockTime next = kNoClockTime;
    for (const auto& stream : streams) {
        next = std::min(next, stream->work(context_, now));
        asleep_ = asleep_ || stream->trouble() == ServerStream::Trouble::sleepingDevice;
        hangs_ = hangs_ || stream->trouble() == ServerStream::Trouble::noAnswer;
    }
    const std::scoped_lock lock(mutex_);
    // One that was closed a moment ago still has to take leave of the server, on this thread and in its turn.
    std::erase_if(streams_, [](const auto& stream) { return stream->isDead(); });
    return next;
}

/// Streams of a server that hangs are given up: it may never answer. Whoever got the first device that there
/// was needs no word of it, which would make a player begin again.
void SoundServer::decide(bool available) {
    bool appeared = false;
    {
        const std::scoped_lock lock(mutex_);
        appeared = available && !available_ && missed_;
        missed_ = !available && (missed_ || available_);
        available_ = available;
        const bool known = !context_ || deviceThere_ || (question_ == nullptr && askAt_ > ClockTime(0));
        decided_ = decided_ || known;
        if (!available)
            for (const auto& stream : streams_)
                stream->drop();
    }
    decision_.notify_all();
    if (appeared)
        observers_->call();
}

}  // namespace korvane
