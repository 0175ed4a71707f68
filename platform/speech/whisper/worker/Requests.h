// What the program asks of this worker, read on a thread of its own: so a stop is heard and the program's end
// is noticed while the library computes.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/speech/whisper/WhisperProtocol.h"

namespace korvane::whisper {

enum class Task { load, loadVoices, recognise, findVoices };

struct Request {
    Task task = Task::load;
    int threads = 0;
    std::string path;
    std::int64_t id = 0;
    std::string language;
    std::vector<float> samples;
};

/// Made once. The process ends with the input, or when the input makes no sense.
class Requests {
  public:
    /// \param input  file descriptor of the pipe to read from.
    explicit Requests(int input);

    /// Waits for the next.
    Request next();
    /// Whether the request is to be given up. Any thread.
    bool isStopped(std::int64_t id) const { return stopped_.load() >= id; }

  private:
    void read();
    void handle(const std::string& line);
    Request readRequest(Line& line, Task task);
    std::string readLine();
    void readBytes(void* to, std::size_t count);
    [[noreturn]] static void leave(int code);

    const int input_;
    std::string buffer_;
    std::size_t used_ = 0;
    std::atomic<std::int64_t> stopped_ = -1;  ///< ids rise
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Request> waiting_;
};

}  // namespace korvane::whisper
