// A child process that is spoken to over its standard input and output.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace korvane {

/// Owned by one thread at a time. Destroying it ends the child and takes it off the list of processes.
///
/// The child gets these two pipes and nothing else that is open here, and finds its input at an end when this
/// process goes, however it goes. (A signal at the parent's death is of no use: it comes when the *thread*
/// that started the child ends.)
class WorkerProcess {
  public:
    enum class Event { ready, stopped, late };

    /// \param command      program and arguments.
    /// \param environment  "NAME=value", in place of or besides what this process has.
    /// \throws std::system_error when it can't be started.
    WorkerProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /// Reads what has come, waiting for the first byte until `deadline` or a stop.
    /// \param count  out: bytes read; 0 with `ready`: the child has closed its end.
    Event read(std::span<char> into, std::size_t& count, std::chrono::steady_clock::time_point deadline,
               const std::stop_token& stop);

    /// Writes as much as the child takes at once, waiting likewise.
    /// \param count  out: bytes written; 0 with `ready`: the child doesn't listen any more.
    Event write(std::span<const char> from, std::size_t& count,
                std::chrono::steady_clock::time_point deadline, const std::stop_token& stop);

    /// Whether it still runs.
    bool isRunning();
    /// Ends it now. Returns also when the kernel doesn't let go of it for a while, deep in a driver or a file
    /// of the network that doesn't answer: it ends when that does.
    void end();
    /// What it ended with once it has closed its pipes, as waitpid tells it; nothing when it goes on living
    /// for so long.
    std::optional<int> endOfItself(std::chrono::milliseconds patience);

    pid_t id() const { return id_; }

  private:
    Event waitFor(int file, short events, std::chrono::steady_clock::time_point deadline,
                  const std::stop_token& stop) const;

    pid_t id_ = -1;
    int input_ = -1;   // to the child
    int output_ = -1;  // from the child
    std::optional<int> status_;
    bool isLeftToItself_ = false;
};

}  // namespace korvane
