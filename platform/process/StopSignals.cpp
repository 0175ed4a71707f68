#include "platform/process/StopSignals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <system_error>

#include "platform/process/ExitCode.h"

namespace korvane {
namespace {

constexpr std::array<int, 3> stopSignals{SIGINT, SIGTERM, SIGHUP};

// A handler may touch nothing but these: lock-free numbers and write().
std::atomic<int> writeEnd{-1};
std::atomic<int> received{0};
static_assert(std::atomic<int>::is_always_lock_free);

int readEnd = -1;  // main thread only
std::array<struct sigaction, stopSignals.size()> previous{};

extern "C" void onStopSignal(int) {
    const int error = errno;
    if (received.fetch_add(1) >= 2)
        _exit(static_cast<int>(ExitCode::stopped));
    const char byte = 1;
    [[maybe_unused]] const auto written = write(writeEnd.load(), &byte, 1);
    errno = error;
}

sigset_t stopSignalSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : stopSignals)
        sigaddset(&set, number);
    return set;
}

}  // namespace

void StopSignals::hold() {
    const sigset_t set = stopSignalSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

StopSignals::StopSignals(std::function<void(int)> onSignal) : onSignal_(std::move(onSignal)) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "The program can't watch for Ctrl-C");
    readEnd = ends[0];
    writeEnd = ends[1];
    received = 0;
    notifier_ = std::make_unique<QSocketNotifier>(readEnd, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { drain(); });

    struct sigaction action {};
    action.sa_handler = onStopSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < stopSignals.size(); ++i) {
        sigaction(stopSignals[i], nullptr, &previous[i]);
        // A program started with nohup outlives its terminal. (An ignored SIGINT is what a script's
        // background job gets unasked; there a stop is meant.)
        if (stopSignals[i] == SIGHUP && previous[i].sa_handler == SIG_IGN)
            continue;
        sigaction(stopSignals[i], &action, nullptr);
    }
    const sigset_t set = stopSignalSet();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

StopSignals::~StopSignals() {
    for (std::size_t i = 0; i < stopSignals.size(); ++i)
        sigaction(stopSignals[i], &previous[i], nullptr);
    notifier_.reset();
    close(readEnd);
    close(writeEnd.exchange(-1));
}

void StopSignals::drain() {
    char byte = 0;
    while (read(readEnd, &byte, 1) == 1)
        onSignal_(++seen_);
}

}  // namespace korvane
