#include "platform/speech/whisper/WorkerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace korvane {
namespace {

using Clock = std::chrono::steady_clock;

/// Milliseconds are usual, some hundred with gigabytes to give back.
constexpr std::chrono::seconds longestEnd{2};

/// A file descriptor, owned.
class File {
  public:
    explicit File(int number = -1) : number_(number) {}
    ~File() {
        if (number_ >= 0)
            close(number_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }

  private:
    int number_;
};

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category());
    return ends;
}

/// As C wants it; valid as long as the strings are.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const auto& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

/// Those, and what else this process has.
std::vector<std::string> environmentWith(std::vector<std::string> all) {
    const auto own = all.size();
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view there = *entry;
        const auto name = there.substr(0, there.find('=') + 1);
        if (std::none_of(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(own),
                         [&](const auto& given) { return given.starts_with(name); }))
            all.emplace_back(there);
    }
    return all;
}

pid_t spawn(const std::vector<std::string>& command, const std::vector<std::string>& environment, int input,
            int output) {
    const auto arguments = pointersTo(command);
    const auto texts = environmentWith(environment);
    const auto variables = pointersTo(texts);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // Also what a library has opened here without saying that it is not for children.
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    // A process group of its own: what is meant for this program on a terminal reaches the child through us.
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    pid_t id = -1;
    const int error = posix_spawn(&id, arguments[0], &files, &attributes, arguments.data(), variables.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        throw std::system_error(error, std::generic_category());
    return id;
}

/// Writes without a signal when nobody reads: a child that is gone must not end this process, whatever it
/// does with such signals.
ssize_t quietWrite(int file, std::span<const char> from) {
    sigset_t broken, before, pending;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    sigpending(&pending);
    pthread_sigmask(SIG_BLOCK, &broken, &before);
    const auto written = ::write(file, from.data(), from.size());
    const int error = errno;
    if (written < 0 && error == EPIPE && sigismember(&pending, SIGPIPE) == 0) {
        const timespec atOnce{};
        while (sigtimedwait(&broken, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

}  // namespace

WorkerProcess::WorkerProcess(const std::vector<std::string>& command,
                             const std::vector<std::string>& environment) {
    const auto toChild = makePipe();
    File childInput(toChild[0]), input(toChild[1]);
    const auto fromChild = makePipe();
    File output(fromChild[0]), childOutput(fromChild[1]);
    for (const int file : {input.number(), output.number()})
        fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK);
    id_ = spawn(command, environment, childInput.number(), childOutput.number());
    input_ = input.release();
    output_ = output.release();
}

WorkerProcess::~WorkerProcess() {
    end();
    close(input_);
    close(output_);
}

WorkerProcess::Event WorkerProcess::waitFor(int file, short events, Clock::time_point deadline,
                                            const std::stop_token& stop) const {
    const File bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (bell.number() < 0)
        throw std::system_error(errno, std::generic_category());
    const std::stop_callback ring(stop, [&bell] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(bell.number(), &one, sizeof one);
    });
    for (;;) {
        if (stop.stop_requested())
            return Event::stopped;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        std::array<pollfd, 2> waiting{pollfd{file, events, 0}, pollfd{bell.number(), POLLIN, 0}};
        const int heard = poll(waiting.data(), waiting.size(),
                               static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX)));
        if (heard < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category());
        if (heard > 0 && waiting[0].revents != 0)
            return Event::ready;
        if (heard == 0 && left <= 0)
            return Event::late;
    }
}

WorkerProcess::Event WorkerProcess::read(std::span<char> into, std::size_t& count, Clock::time_point deadline,
                                         const std::stop_token& stop) {
    for (;;) {
        const auto event = waitFor(output_, POLLIN, deadline, stop);
        count = 0;
        if (event != Event::ready)
            return event;
        const auto got = ::read(output_, into.data(), into.size());
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        count = got > 0 ? static_cast<std::size_t>(got) : 0;
        return event;
    }
}

WorkerProcess::Event WorkerProcess::write(std::span<const char> from, std::size_t& count,
                                          Clock::time_point deadline, const std::stop_token& stop) {
    for (;;) {
        const auto event = waitFor(input_, POLLOUT, deadline, stop);
        count = 0;
        if (event != Event::ready)
            return event;
        const auto written = quietWrite(input_, from);
        if (written < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        count = written > 0 ? static_cast<std::size_t>(written) : 0;
        return event;
    }
}

bool WorkerProcess::isRunning() {
    if (status_)
        return false;
    int status = 0;
    const pid_t found = waitpid(id_, &status, WNOHANG);
    if (found == id_)
        status_ = status;
    else if (found < 0 && errno == ECHILD)
        status_ = 0;  // a program that ignores its children's ends doesn't learn of them
    return !status_;
}

void WorkerProcess::end() {
    if (isLeftToItself_ || !isRunning())
        return;
    kill(id_, SIGKILL);
    isLeftToItself_ = !endOfItself(longestEnd);
}

std::optional<int> WorkerProcess::endOfItself(std::chrono::milliseconds patience) {
    // It is about to be gone, and the kernel tells only whoever asks.
    for (const auto deadline = Clock::now() + patience; isRunning() && Clock::now() < deadline;)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return status_;
}

}  // namespace korvane
