// korvane-bench-player: the player without a window, a job for each process. README.md says what is printed.
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/player/Jobs.h"

using namespace korvane;

namespace {

constexpr const char* kUsage =
    "Usage: korvane-bench-player lips FOLDER RATE SECONDS even|device | drift FOLDER MINUTES |\n"
    "       seek VIDEO SECONDS COUNT\n";

int run(const std::string& job, int argc, char** argv) {
    if (job == "lips" && argc == 6)
        bench::measureLips(argv[2], std::atoi(argv[3]), std::atof(argv[4]), argv[5] == std::string("device"));
    else if (job == "drift" && argc == 4)
        bench::measureDrift(argv[2], std::atof(argv[3]));
    else if (job == "seek" && argc == 5)
        bench::measureSeeks(argv[2], std::atof(argv[3]), std::atoi(argv[4]));
    else
        return std::fputs(kUsage, stderr), 2;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    try {
        return run(argc > 1 ? argv[1] : "", argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvane-bench-player: %s\n", error.what());
        return 1;
    }
}
