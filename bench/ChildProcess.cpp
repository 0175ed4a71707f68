#include "bench/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>

namespace korvane::bench {
namespace {

struct Pipe {
    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("No pipe can be made.");
        reading = ends[0];
        writing = ends[1];
    }
    ~Pipe() {
        closeReading();
        closeWriting();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeReading() { closeOne(reading); }
    void closeWriting() { closeOne(writing); }

    int reading = -1;
    int writing = -1;

  private:
    static void closeOne(int& end) {
        if (end >= 0)
            close(end);
        end = -1;
    }
};

/// \param input,output  descriptors of the child's standard input and output; below zero: nothing, and
/// shared.
pid_t start(const CommandLine& command, int input, int output) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (input >= 0)
        posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output >= 0)
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0)
        throw std::runtime_error(command[0] + " can't be started.");
    return child;
}

double seconds(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
}

ResourceUse waitFor(pid_t child, const CommandLine& command) {
    int status = 0;
    rusage used{};
    while (wait4(child, &status, 0, &used) < 0)
        if (errno != EINTR)
            throw std::runtime_error("Waiting for " + command[0] + " failed.");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command[0] + " failed.");
    return {0.0, seconds(used.ru_utime) + seconds(used.ru_stime), std::int64_t{used.ru_maxrss} * 1024};
}

}  // namespace

Finished runChild(const CommandLine& command) {
    Pipe pipe;
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start(command, -1, pipe.writing);
    pipe.closeWriting();
    Finished finished;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(pipe.reading, buffer, sizeof buffer)) != 0;)
        if (got > 0)
            finished.output.append(buffer, static_cast<std::size_t>(got));
        else if (errno != EINTR)
            break;
    finished.use = waitFor(child, command);
    finished.use.wallSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return finished;
}

void feedChild(const CommandLine& command, const std::function<const std::vector<std::uint8_t>*()>& next) {
    std::signal(SIGPIPE, SIG_IGN);  // a child that ends early shows in its status
    Pipe pipe;
    const pid_t child = start(command, pipe.reading, -1);
    pipe.closeReading();
    bool reads = true;
    for (const auto* bytes = next(); bytes && reads; bytes = next())
        for (std::size_t sent = 0; sent < bytes->size() && reads;) {
            const ssize_t wrote = write(pipe.writing, bytes->data() + sent, bytes->size() - sent);
            if (wrote > 0)
                sent += static_cast<std::size_t>(wrote);
            else
                reads = errno == EINTR;
        }
    pipe.closeWriting();
    waitFor(child, command);
}

}  // namespace korvane::bench
