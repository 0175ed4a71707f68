// A worker that speaks the protocol by hand and misbehaves as it is told:
//
//   korvane-fake-whisper BEHAVIOUR [MARK] [--no-gpu]
//
// Several behaviours are joined by "+". One that begins with "card:" finds a graphics card, and misbehaves
// only while it may use that, else as is told behind "|"; with "claims-card:" it says that it computes with
// one, whatever it may. With MARK, a file, it misbehaves only while that file isn't there, and makes it when
// it comes to that: so the next one is well behaved. A well-behaved one hears "one two" in every request, at
// 0.5 and 1.0 s, and finds a voice everywhere.
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/speech/whisper/WhisperProtocol.h"

namespace {

using korvane::whisper::Line;

std::string behaviour;
std::string mark;
bool usesCard = false;
int voiceModels = 0;     // that it was given
bool hasVoices = false;  // the last of them

/// Whether to misbehave like this, now.
bool isTold(const std::string& what) {
    if (("+" + behaviour + "+").find("+" + what + "+") == std::string::npos)
        return false;
    if (!mark.empty())
        std::ofstream(mark) << what;
    return true;
}

void say(const std::string& text) {
    std::cout << text << std::flush;
}

/// Not with ignore(), which waits for the byte behind those.
void passOver(std::size_t count) {
    std::string bytes(count, '\0');
    std::cin.read(bytes.data(), static_cast<std::streamsize>(count));
}

[[noreturn]] void sleepForever() {
    for (;;)
        pause();
}

/// What goes wrong wherever it is put.
void misbehave(const std::string& where) {
    if (isTold(where + "-exits"))
        std::_Exit(3);
    if (isTold(where + "-aborts"))
        std::abort();
    if (isTold(where + "-killed"))
        raise(SIGKILL);
    if (isTold(where + "-hangs"))
        sleepForever();
    if (isTold(where + "-closes")) {
        close(STDOUT_FILENO);
        close(STDIN_FILENO);
        sleepForever();
    }
    if (isTold(where + "-nonsense"))
        say("I am a fish\n");
    if (isTold(where + "-binary"))
        say(std::string(300, '\0'));
    if (isTold(where + "-flood"))
        for (;;)
            say(std::string(4096, 'x'));
}

void answer(std::int64_t id) {
    const auto number = std::to_string(id);
    misbehave("asked");
    say("alive " + number + "\n");
    if (isTold("wrong-request"))
        say("done " + std::to_string(id + 1) + "\n");
    if (isTold("token-first"))
        say("token 50 1 3\none");
    if (isTold("text-too-long"))
        say("segment " + number + " 0 100 0\ntoken 50 1 99999999\none");
    if (isTold("text-cut"))
        say("segment " + number + " 0 100 0\ntoken 50 1 100\none");
    if (isTold("no-numbers"))
        say("segment " + number + " nan inf -1\n");
    if (isTold("endless"))
        for (;;)
            say("segment " + number + " 0 100 0\ntoken 50 1 3\none");
    if (isTold("no-memory"))
        return say("failed memory 5\nNone.");
    if (isTold("backwards"))
        return say("segment " + number +
                   " 300 -500 0\ntoken 400 1 4\n onetoken -70 1 4\n twotoken 99999 1 6\n three" + "done " +
                   number + "\n");
    if (isTold("alive-forever"))
        for (;;) {
            say("alive " + number + "\n");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    say("segment " + number + " 0 100 0.01\ntoken 50 0.9 4\n one");
    misbehave("answering");
    say("token 100 0.9 4\n two");
    misbehave("answered");
    say("done " + number + "\n");
    misbehave("idle");
}

void find(std::int64_t id, std::size_t samples) {
    const auto number = std::to_string(id);
    misbehave("finding");
    if (!hasVoices)
        return say("failed engine 5\nNone.");
    if (isTold("no-memory-to-find"))
        return say("failed memory 5\nNone.");
    auto frames = (samples + korvane::whisper::voiceFrame - 1) / korvane::whisper::voiceFrame;
    if (isTold("spoiled-voices"))
        return say("failed voices 8\nSpoiled.");
    if (isTold("few-chances"))
        --frames;
    const std::string chances(frames, isTold("no-voices") ? '\0' : '\xFF');
    if (!isTold("no-chances"))
        say("chances " + number + " " + std::to_string(frames) + "\n" + chances);
    misbehave("found");
    say("done " + number + "\n");
}

/// With its path, which is skipped.
void load(Line& line, const std::string& what, const std::string& failure, const std::string& computes) {
    passOver(line.number<std::size_t>(1, 65536));
    misbehave(what);
    say(isTold("bad-" + failure) ? "failed " + failure + " 12\nIt is broken" : "loaded " + computes + "\n");
}

void loadVoices(Line& line) {
    ++voiceModels;
    hasVoices = false;
    if (voiceModels > 1 && isTold("voices-again"))
        std::_Exit(4);
    if (voiceModels == 2 && isTold("second-voices-bad")) {
        passOver(line.number<std::size_t>(1, 65536));
        return say("failed voices 12\nIt is broken");
    }
    load(line, "voices", "voices", "CPU");
    hasVoices = !isTold("bad-voices");
}

void loadModel(Line& line) {
    const std::string computes = usesCard ? "Vulkan0" : "CPU";
    line.number(1, 1024);
    misbehave("looking");
    say("loading " + computes + "\n");
    if (isTold("no-machine"))
        say("failed machine 5\nNone.");
    if (isTold("no-memory-to-load"))
        say("failed memory 5\nNone.");
    if (isTold("engine-fails-to-load"))
        say("failed engine 5\nNone.");
    const int pieces = isTold("loads-slowly") ? 40 : isTold("loads-forever") ? 1000000 : 0;
    for (int i = 0; i < pieces; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
        say("loading " + computes + "\n");
    }
    load(line, "loading", "model", computes);
    misbehave("loaded");
}

void readArguments(std::vector<std::string> all) {
    const bool mayUseCard = std::erase(all, "--no-gpu") == 0;
    all.resize(2);
    behaviour = all[0];
    mark = all[1];
    const std::string prefix = "card:";
    if (behaviour.starts_with(prefix)) {
        usesCard = mayUseCard;
        const auto end = behaviour.find('|');
        const auto without = end == std::string::npos ? "" : behaviour.substr(end + 1);
        behaviour = mayUseCard ? behaviour.substr(prefix.size(), end - prefix.size()) : without;
    }
    const std::string claim = "claims-card:";
    if (behaviour.starts_with(claim)) {
        usesCard = true;
        behaviour = behaviour.substr(claim.size());
    }
    if (std::ifstream(mark))
        behaviour = "";
}

}  // namespace

int main(int count, char** arguments) {
    signal(SIGPIPE, SIG_DFL);
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);  // a test keeps the kernel from letting go of it
    readArguments({arguments + 1, arguments + count});

    misbehave("started");
    say("hello " + std::to_string(isTold("other-version") ? 77 : korvane::whisper::protocolVersion) + "\n");
    if (usesCard)
        say("looking\n");
    if (isTold("deaf"))
        sleepForever();
    for (std::string text; std::getline(std::cin, text);) {
        Line line(text);
        const auto verb = line.word();
        if (verb == "load") {
            loadModel(line);
        } else if (verb == "voices") {
            loadVoices(line);
        } else if (verb == "find") {
            const auto id = line.number<std::int64_t>(0, 1000000);
            const auto bytes = line.number<std::size_t>(0, 100000000);
            passOver(bytes);
            find(id, bytes / sizeof(float));
        } else if (verb == "recognise") {
            const auto id = line.number<std::int64_t>(0, 1000000);
            line.word();
            passOver(line.number<std::size_t>(0, 100000000));
            answer(id);
        }
    }
}
