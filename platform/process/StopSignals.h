// Turns Ctrl-C and a polite kill into a stop request on the main thread.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace korvane {

/// While it lives, SIGINT, SIGTERM and (unless the program was started to survive it) SIGHUP arrive as calls
/// on the main thread. A third signal ends the process at once, should the main thread itself hang. One at a
/// time; needs the application object.
class StopSignals {
  public:
    /// Call first in main: a signal that comes before one of these stands waits for it.
    static void hold();

    /// \param onSignal  called with 1 for the first signal, 2 for the second.
    /// \throws std::system_error when the system has no pipe left.
    explicit StopSignals(std::function<void(int)> onSignal);
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

  private:
    void drain();

    std::function<void(int)> onSignal_;
    int seen_ = 0;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace korvane
