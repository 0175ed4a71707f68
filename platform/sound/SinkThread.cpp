#include "platform/sound/SinkThread.h"

#include <QAudioSink>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <utility>

namespace korvane {
namespace {

constexpr int kPumpMs = 5;
// What the device holds itself, and how far ahead of what is heard a player may write. More would make
// nothing safer, since the player fills up every 10 ms, but pause and seek would have more to throw away.
constexpr double kDeviceSeconds = 0.1;
constexpr double kAheadSeconds = 0.18;
// A sink whose server went away says nothing; it just plays on nothing.
constexpr ClockTime kDeadAfter = std::chrono::milliseconds(700);

ClockTime steadyNow() {
    return std::chrono::duration_cast<ClockTime>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace

SinkThread::SinkThread(QAudioDevice device, AudioFormat format)
    : device_(std::move(device)), format_(format) {
    sinkFormat_.setSampleRate(format.rateHz);
    sinkFormat_.setChannelCount(format.channels);
    sinkFormat_.setSampleFormat(QAudioFormat::Float);
    if (!device_.isFormatSupported(sinkFormat_))
        sinkFormat_.setSampleFormat(QAudioFormat::Int16);
}

std::int64_t SinkThread::room() {
    const std::scoped_lock lock(mutex_);
    const auto ahead = static_cast<std::int64_t>(kAheadSeconds * format_.rateHz);
    return dead_ ? 0 : std::max<std::int64_t>(0, ahead - (written_ - heard_.frames));
}

void SinkThread::write(std::span<const float> samples) {
    const std::scoped_lock lock(mutex_);
    waiting_.insert(waiting_.end(), samples.begin(), samples.end());
    written_ += static_cast<std::int64_t>(samples.size()) / format_.channels;
}

void SinkThread::flush() {
    const std::scoped_lock lock(mutex_);
    waiting_.clear();
    written_ = 0;
    heard_ = {};
    ++flushes_;
}

HeardFrames SinkThread::heard() {
    const std::scoped_lock lock(mutex_);
    return heard_;
}

void SinkThread::run() {
    QAudioSink sink(device_, sinkFormat_);
    sink.setBufferSize(sinkFormat_.bytesForDuration(static_cast<qint64>(kDeviceSeconds * 1e6)));
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { pump(sink); });
    timer.start(kPumpMs);
    exec();
    sink.stop();  // destroying a sink that still plays crashes in the library
}

void SinkThread::pump(QAudioSink& sink) {
    if (dead_)
        return;
    restart(sink);
    feed(sink);
    if (!entry_)
        return;
    const bool stopped = sink.state() == QAudio::StoppedState;
    if (stopped || sink.error() == QAudio::OpenError || sink.error() == QAudio::IOError ||
        sink.error() == QAudio::FatalError) {
        dead_ = true;
        return;
    }
    report(sink);
}

/// Drops what the device still has when the player asked for that.
void SinkThread::restart(QAudioSink& sink) {
    {
        const std::scoped_lock lock(mutex_);
        if (flushesDone_ == flushes_)
            return;
        flushesDone_ = flushes_;
    }
    if (entry_)
        sink.reset();
    entry_ = nullptr;
    given_ = 0;
}

void SinkThread::feed(QAudioSink& sink) {
    std::vector<float> samples;
    {
        const std::scoped_lock lock(mutex_);
        if (waiting_.empty() || flushesDone_ != flushes_)
            return;
        const int frameBytes = sinkFormat_.bytesPerFrame();
        const auto all = static_cast<qsizetype>(waiting_.size()) / format_.channels;
        const auto room = entry_ ? sink.bytesFree() / frameBytes : all;
        const auto count = static_cast<std::ptrdiff_t>(std::min(all, room) * format_.channels);
        samples.assign(waiting_.begin(), waiting_.begin() + count);
    }
    if (samples.empty())
        return;
    if (!entry_) {
        entry_ = sink.start();
        lastNews_ = steadyNow();
    }
    if (!entry_) {
        dead_ = true;
        return;
    }
    const std::vector<char> bytes = bytesOf(samples);
    const qint64 taken = entry_->write(bytes.data(), static_cast<qint64>(bytes.size()));
    const qint64 frames = std::max<qint64>(0, taken) / sinkFormat_.bytesPerFrame();
    given_ += frames;
    const std::scoped_lock lock(mutex_);
    if (flushesDone_ == flushes_)
        waiting_.erase(waiting_.begin(),
                       waiting_.begin() + static_cast<std::ptrdiff_t>(frames * format_.channels));
}

void SinkThread::report(const QAudioSink& sink) {
    const auto frames = static_cast<std::int64_t>(
        std::llround(static_cast<double>(sink.processedUSecs()) * 1e-6 * format_.rateHz));
    const ClockTime now = steadyNow();
    const std::scoped_lock lock(mutex_);
    if (flushesDone_ != flushes_)
        return;
    if (frames > heard_.frames && heard_.frames < given_) {
        heard_ = {std::min(frames, given_), now};
        lastNews_ = now;
    }
    if (heard_.frames == given_)
        lastNews_ = now;
    if (now - lastNews_ > kDeadAfter)
        dead_ = true;
}

std::vector<char> SinkThread::bytesOf(std::span<const float> samples) const {
    std::vector<char> bytes;
    if (sinkFormat_.sampleFormat() == QAudioFormat::Float) {
        bytes.resize(samples.size_bytes());
        std::memcpy(bytes.data(), samples.data(), bytes.size());
        return bytes;
    }
    bytes.resize(samples.size() * sizeof(std::int16_t));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto value =
            static_cast<std::int16_t>(std::lround(std::clamp(samples[i], -1.0F, 1.0F) * 32767.0F));
        std::memcpy(bytes.data() + i * sizeof value, &value, sizeof value);
    }
    return bytes;
}

}  // namespace korvane
