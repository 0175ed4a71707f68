#include "platform/speech/whisper/worker/Requests.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

namespace korvane::whisper {
namespace {

std::optional<Task> taskOf(std::string_view verb) {
    if (verb == "load")
        return Task::load;
    if (verb == "voices")
        return Task::loadVoices;
    if (verb == "recognise")
        return Task::recognise;
    if (verb == "find")
        return Task::findVoices;
    return std::nullopt;
}

}  // namespace

Requests::Requests(int input) : input_(input) {
    std::thread([this] { read(); }).detach();
}

Request Requests::next() {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return !waiting_.empty(); });
    auto request = std::move(waiting_.front());
    waiting_.pop_front();
    return request;
}

// At once and without destructors: the other thread may be deep in the library, and nothing is left to keep.
void Requests::leave(int code) {
    _exit(code);
}

void Requests::read() {
    for (;;)
        handle(readLine());
}

void Requests::handle(const std::string& text) {
    Line line(text);
    const auto verb = line.word();
    if (verb == "stop") {
        const auto id = line.number<std::int64_t>(0, std::numeric_limits<std::int64_t>::max());
        if (!line.isComplete())
            leave(2);
        stopped_ = id;
        return;
    }
    const auto task = taskOf(verb);
    if (!task)
        leave(2);
    auto request = readRequest(line, *task);
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(request));
    }
    arrived_.notify_one();
}

Request Requests::readRequest(Line& line, Task task) {
    Request request;
    request.task = task;
    const bool loads = task == Task::load || task == Task::loadVoices;
    if (task == Task::load)
        request.threads = line.number(1, 1024);
    if (!loads)
        request.id = line.number<std::int64_t>(0, std::numeric_limits<std::int64_t>::max());
    if (task == Task::recognise)
        request.language = line.word();
    const auto bytes =
        line.number<std::size_t>(loads ? 1 : 0, loads ? longestPath : longestSound * sizeof(float));
    if (!line.isComplete() || (!loads && bytes % sizeof(float) != 0))
        leave(2);
    if (loads) {
        request.path.resize(bytes);
        readBytes(request.path.data(), bytes);
    } else {
        request.samples.resize(bytes / sizeof(float));
        readBytes(request.samples.data(), bytes);
    }
    return request;
}

std::string Requests::readLine() {
    std::string line;
    for (char byte = 0;;) {
        readBytes(&byte, 1);
        if (byte == '\n')
            return line;
        if (line.size() == longestLine)
            leave(2);
        line += byte;
    }
}

void Requests::readBytes(void* to, std::size_t count) {
    auto* target = static_cast<char*>(to);
    while (count > 0) {
        if (used_ == buffer_.size()) {
            buffer_.resize(64 * 1024);
            const auto got = ::read(input_, buffer_.data(), buffer_.size());
            buffer_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
            used_ = 0;
            if (got == 0)
                leave(0);
            if (got < 0 && errno != EINTR)
                leave(1);
            continue;
        }
        const auto part = std::min(count, buffer_.size() - used_);
        std::memcpy(target, buffer_.data() + used_, part);
        used_ += part;
        target += part;
        count -= part;
    }
}

}  // namespace korvane::whisper
