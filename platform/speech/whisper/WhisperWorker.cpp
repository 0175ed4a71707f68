#include "platform/speech/whisper/WhisperWorker.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "platform/speech/whisper/WhisperMessages.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/speech/whisper/WhisperProtocol.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

using whisper::Line;
using whisper::makeLine;
using whisper::readChances;
using whisper::readSegment;
using whisper::readToken;

/// Far more than a minute of sound holds; a worker that says more has lost its mind.
constexpr int mostTokens = 20000;

}  // namespace

WhisperWorker::WhisperWorker(const std::vector<std::string>& command, std::filesystem::path model,
                             int threads, const WhisperPatience& patience, const std::stop_token& stop) try
    : model_(std::move(model)), patience_(patience), process_(command, whisperEnvironment(command)) {
    greet(stop);
    backend_ = load(makeLine("load", threads, model_.native().size()), model_, stop);
    usesCard_ = backend_ != whisper::processor;
    isUsable_ = true;
} catch (const std::system_error& error) {
    throw RecognitionError(
        "Whisper can't be started: " + error.code().message() +
        ". Close other programs and try again; if that doesn't help, install Korvane again.");
}

void WhisperWorker::greet(const std::stop_token& stop) {
    deadline_ = Clock::now() + patience_.start;
    const auto message = next(stop);
    Line line(message.line);
    const auto verb = line.word();
    if (verb == "failed")
        failed(message);
    const auto version = line.number(0, 1000000);
    if (!line.isComplete() || verb != "hello")
        talkedNonsense();
    if (version != whisper::protocolVersion)
        throw RecognitionError(
            "The program and its Whisper worker are of different versions. Install them again.");
}

std::string WhisperWorker::load(const std::string& request, const std::filesystem::path& file,
                                const std::stop_token& stop) {
    deadline_ = Clock::now() + patience_.load;
    const auto until = Clock::now() + patience_.wholeLoad;
    send(request + file.native(), stop);
    for (;;) {
        const auto message = next(stop);
        if (Clock::now() > until)
            tookTooLong();
        Line line(message.line);
        const auto verb = line.word();
        if (verb == "failed")
            failed(message);
        const std::string backend(verb == "looking" ? "" : line.word());
        if (!line.isComplete() || (verb != "looking" && verb != "loading" && verb != "loaded"))
            talkedNonsense();
        if (verb == "loaded")
            return backend;
        // A driver that is looked for counts as one that is used.
        usesCard_ = backend != whisper::processor;
        deadline_ = Clock::now() + (verb == "looking" ? patience_.card : patience_.load);
    }
}

void WhisperWorker::loadVoices(const std::filesystem::path& file, const std::stop_token& stop) {
    checkCancelled(stop);
    isUsable_ = false;
    voices_ = file.filename().string();
    try {
        load(makeLine("voices", file.native().size()), file, stop);
        isUsable_ = true;
    } catch (const CancellationError&) {
        process_.end();  // soon done, but who knows
        throw;
    } catch (const std::system_error& error) {
        unreachable(error);
    }
}

std::vector<WhisperSegment> WhisperWorker::recognize(std::span<const float> samples,
                                                     const std::string& language,
                                                     const std::stop_token& stop) {
    std::vector<WhisperSegment> segments;
    const auto take = [&](Message& message) {
        Line line(message.line);
        const auto verb = line.word();
        if (verb == "segment") {
            line.number(request_, request_);
            segments.push_back(readSegment(line));
        } else if (verb == "token" && !segments.empty()) {
            segments.back().tokens.push_back(readToken(line, std::move(message.text)));
        } else {
            talkedNonsense();
        }
        if (!line.isComplete())
            talkedNonsense();
    };
    ask("recognise", " " + language, samples, take, stop);
    return segments;
}

std::vector<double> WhisperWorker::findVoices(std::span<const float> samples, const std::stop_token& stop) {
    const auto frames = (samples.size() + whisper::voiceFrame - 1) / whisper::voiceFrame;
    std::vector<double> chances;
    const auto take = [&](Message& message) {
        Line line(message.line);
        const auto verb = line.word();
        line.number(request_, request_);
        line.number(frames, frames);
        if (verb != "chances" || !line.isComplete() || !chances.empty())
            talkedNonsense();
        chances = readChances(message.text);
    };
    ask("find", "", samples, take, stop);
    if (chances.size() != frames)
        talkedNonsense();
    return chances;
}

void WhisperWorker::ask(const std::string& verb, const std::string& about, std::span<const float> samples,
                        const Take& take, const std::stop_token& stop) {
    checkCancelled(stop);
    isUsable_ = false;  // until the request has come to a proper end
    ++request_;
    deadline_ = Clock::now() + patience_.work;
    const std::chrono::milliseconds length(std::ssize(samples) * 1000 / whisper::rateHz);
    const auto until = Clock::now() + patience_.request + patience_.requestPerLength * length;
    const auto bytes = std::as_bytes(samples);
    bool isSent = false;
    try {
        send(makeLine(verb, std::to_string(request_) + about, bytes.size()), stop);
        send({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, stop);
        isSent = true;
        receive(take, until, stop);
        isUsable_ = true;
    } catch (const CancellationError&) {
        if (isSent)
            giveUp();
        else
            process_.end();  // it waits for the rest of a request that never comes
        throw;
    } catch (const std::system_error& error) {
        unreachable(error);
    }
}

void WhisperWorker::receive(const Take& take, Clock::time_point until, const std::stop_token& stop) {
    for (int pieces = 0; pieces < mostTokens;) {
        auto message = next(stop);
        // Whatever it says, it lives; but also who turns in circles does.
        if (Clock::now() > until)
            tookTooLong();
        deadline_ = Clock::now() + (usesCard_ ? patience_.card : patience_.work);
        Line line(message.line);
        const auto verb = line.word();
        if (verb == "failed")
            failed(message);
        if (verb != "done" && verb != "alive") {
            take(message);
            ++pieces;
            continue;
        }
        line.number(request_, request_);
        if (!line.isComplete())
            talkedNonsense();
        if (verb == "done")
            return;
    }
    talkedNonsense();
}

void WhisperWorker::giveUp() {
    deadline_ = Clock::now() + patience_.stop;
    try {
        send(makeLine("stop", request_), {});
        // What it had still to say comes first.
        for (;;) {
            const auto message = next({});
            Line line(message.line);
            const auto verb = line.word();
            if (verb == "alive" || verb == "segment" || verb == "token" || verb == "chances")
                continue;
            isUsable_ = (verb == "stopped" || verb == "done") &&
                        line.number(request_, request_) == request_ && line.isComplete();
            break;
        }
    } catch (const RecognitionError&) {
        isUsable_ = false;
    } catch (const std::system_error&) {
        isUsable_ = false;
    }
    if (!isUsable_)
        process_.end();
}

void WhisperWorker::send(std::span<const char> bytes, const std::stop_token& stop) {
    while (!bytes.empty()) {
        std::size_t count = 0;
        const auto event = process_.write(bytes, count, deadline_, stop);
        if (event == WorkerProcess::Event::ready && count == 0)
            return;  // it is gone; perhaps it has said why
        checkMoved(event, count);
        bytes = bytes.subspan(count);
    }
}

WhisperWorker::Message WhisperWorker::next(const std::stop_token& stop) {
    for (;;) {
        if (auto message = takeWhole())
            return std::move(*message);
        fill(stop);
    }
}

std::optional<WhisperWorker::Message> WhisperWorker::takeWhole() {
    const auto end = heard_.find('\n');
    if (std::min(end, heard_.size()) > whisper::longestLine)
        talkedNonsense();
    if (end == std::string::npos)
        return std::nullopt;
    const std::string_view line(heard_.data(), end);
    std::size_t bytes = 0;
    if (line.starts_with("token ") || line.starts_with("failed ") || line.starts_with("chances ")) {
        Line last(line.substr(line.rfind(' ') + 1));
        bytes = last.number<std::size_t>(0, whisper::longestText);
        if (!last.isComplete())
            talkedNonsense();
    }
    if (heard_.size() - end - 1 < bytes)
        return std::nullopt;
    Message message{std::string(line), heard_.substr(end + 1, bytes)};
    heard_.erase(0, end + 1 + bytes);
    return message;
}

void WhisperWorker::fill(const std::stop_token& stop) {
    std::array<char, 16384> some{};
    std::size_t count = 0;
    const auto event = process_.read(some, count, deadline_, stop);
    checkMoved(event, count);
    heard_.append(some.data(), count);
}

void WhisperWorker::checkMoved(WorkerProcess::Event event, std::size_t count) {
    switch (event) {
        case WorkerProcess::Event::stopped:
            throw CancellationError();
        case WorkerProcess::Event::late:
            hung();
        case WorkerProcess::Event::ready:
            break;
    }
    if (count == 0)
        died();
}

}  // namespace korvane
