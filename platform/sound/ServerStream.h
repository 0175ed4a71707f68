// One stream of sound on its way from a player's thread to the sound server. The player only leaves samples
// and wishes here; the server's thread carries them out, so that a server that hangs keeps nobody waiting.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <vector>

#include "platform/av/AudioOutput.h"

struct pa_context;
struct pa_operation;
struct pa_stream;

namespace korvane {

class ServerStream {
  public:
    /// \param wake  makes the server's thread call work() soon; from any thread.
    ServerStream(AudioFormat format, std::function<void()> wake);
    ServerStream(const ServerStream&) = delete;
    ServerStream& operator=(const ServerStream&) = delete;
    ~ServerStream();

    // The player's thread; as AudioOutput says.
    std::int64_t room();
    void write(std::span<const float> samples);
    void flush();
    HeardFrames heard();
    bool isDead() const { return dead_; }
    /// Nothing more will sound; the server's thread clears up.
    void close();

    // The server's thread, which also destroys it or has called drop() before.

    /// Carries out what was asked for. \return when to call it again, if nothing wakes it before.
    ClockTime work(pa_context* context, ClockTime now);
    /// The connection is going: what was made with it goes before it.
    void drop();
    /// What it died of, if that concerns other streams too.
    enum class Trouble { none, sleepingDevice, noAnswer };
    Trouble trouble() const { return trouble_; }

  private:
    void connect(pa_context* context);
    void disconnect();
    void restart();
    void deliver();
    void askTime(ClockTime now);
    void report();
    bool isReady() const;
    void watch(ClockTime now);

    const AudioFormat format_;
    const std::function<void()> wake_;
    std::atomic<bool> dead_ = false;
    std::atomic<bool> closed_ = false;

    std::mutex mutex_;
    std::vector<float> waiting_;
    std::int64_t written_ = 0;  ///< frames since the last flush
    std::int64_t flushes_ = 0;
    HeardFrames heard_;
    std::int64_t inDevice_ = 0;  ///< frames that the device has taken and not played

    // The server's thread.
    pa_stream* stream_ = nullptr;
    pa_operation* question_ = nullptr;  ///< for the time; not answered yet
    ClockTime askedAt_{0};
    ClockTime askAt_{0};
    std::int64_t flushesDone_ = 0;
    std::int64_t given_ = 0;  ///< frames given to the server since the last flush
    int underruns_ = 0;
    bool plays_ = false;
    Trouble trouble_ = Trouble::none;
    ClockTime awakeAt_{0};  ///< when the device was last seen awake
};

}  // namespace korvane
