// Feeds damaged input to the product for a while. Stops the process at the first fault and says how to see it
// again.
#include <unistd.h>
#include <QGuiApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>

#include "tests/fixtures/ClipCache.h"
#include "tests/fuzz/Fuzzers.h"

namespace {

// A round that takes longer than this hangs.
constexpr unsigned kSecondsForARound = 120;

long numberAfter(int argc, char** argv, const char* option, long otherwise) {
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], option) == 0)
            return std::strtol(argv[i + 1], nullptr, 10);
    return otherwise;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace korvane;
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0) {
        std::puts(
            "fuzz_korvane [--seconds N] [--seed FIRST] [--rounds N]\nOne seed is one round; the last line "
            "names the seed to begin with again.");
        return 0;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const long seconds = numberAfter(argc, argv, "--seconds", 60);
    const long rounds = numberAfter(argc, argv, "--rounds", 0);
    const auto first = static_cast<unsigned>(numberAfter(argc, argv, "--seed", 1));

    const fixtures::ScratchFolder folder;
    unsigned seed = first;
    std::set_terminate([] {
        std::fputs("a fault that nothing names\n", stderr);
        std::abort();
    });
    try {
        fuzz::MediaFuzzer media(folder.path());
        fuzz::TextFuzzer text;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        for (; rounds > 0 ? seed - first < static_cast<unsigned>(rounds)
                          : std::chrono::steady_clock::now() < end;
             ++seed) {
            if (isatty(STDERR_FILENO))
                std::fprintf(stderr, "\rseed %u ", seed);
            alarm(kSecondsForARound);
            fuzz::Random random(seed);
            for (int i = 0; i < 200; ++i)
                text.round(random);
            media.round(random);
            alarm(0);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "\nseed %u: %s\n", seed, error.what());
        return 1;
    }
    std::printf("%u rounds without a fault, seeds %u to %u\n", seed - first, first, seed - 1);
    return seed == first ? 1 : 0;
}
