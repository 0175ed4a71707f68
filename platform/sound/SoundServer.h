// The connection to the desktop's sound server, and the one thread on which everything that has to do with it
// happens. A server that is absent, dies, comes back, hangs or has no device is nobody's problem but this
// one's.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/sound/ServerStream.h"

struct pa_mainloop;

namespace korvane {

/// Made and destroyed anywhere, at once: neither waits for the server. It is asked for only while somebody
/// observes it or has a stream, or has just wanted one.
class SoundServer {
  public:
    SoundServer();
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    /// Any thread. While the very first connection is being made it waits for that, up to a tenth of a
    /// second. \return null while there is no server or no device.
    std::shared_ptr<ServerStream> open(AudioFormat format);

    /// Any thread. Calls `changed` on the server's thread when there is a device from now on and anybody has
    /// missed one meanwhile.
    /// \return keeps it registered; after that is gone, no call begins and none is running.
    std::shared_ptr<void> observe(std::function<void()> changed);

  private:
    struct Observers {
        std::mutex mutex;  // also held while they are called, so that who leaves knows that none runs
        std::vector<std::pair<const void*, std::function<void()>>> list;
        bool areThere();
        void call();
    };

    void wake();
    void run();
    bool isWanted(ClockTime now);
    ClockTime work(ClockTime now);
    void connect(ClockTime now);
    void disconnect();
    void askDevice(ClockTime now);
    void noteDevice(bool there, bool isAsleep);
    ClockTime workOnStreams(ClockTime now);
    void decide(bool available);

    const std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
    int wakeFd_ = -1;

    std::mutex mutex_;
    std::condition_variable decision_;
    bool stopping_ = false;
    bool available_ = false;
    bool missed_ = false;     ///< somebody wanted a device while there was none, or lost it
    bool decided_ = false;    ///< whether there is a device has been known once
    ClockTime wantedAt_{-1};  ///< when a stream was last asked for; negative: never
    std::vector<std::shared_ptr<ServerStream>> streams_;

    // The server's thread.
    pa_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    pa_operation* question_ = nullptr;  ///< for the default device; not answered yet
    ClockTime askedAt_{0};
    ClockTime askAt_{0};
    ClockTime connectAt_{0};
    bool deviceThere_ = false;
    bool asleep_ = false;  ///< the device was put to sleep by somebody
    bool hangs_ = false;   ///< a stream got no answer, and nobody has since

    std::jthread thread_;  // last: it uses the others
};

}  // namespace korvane
