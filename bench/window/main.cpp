// korvane-bench-window: the real window under measurement, a job for each process. README.md says what is
// printed.
#include <QApplication>
#include <QFont>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "app/SoftwareRendering.h"
#include "bench/window/Jobs.h"
#include "platform/process/Process.h"

using namespace korvane;

namespace {

constexpr const char* kUsage =
    "Usage: korvane-bench-window start NANOSECONDS | drag | transcription VIDEO | words VIDEO COUNT | "
    "fonts |\n"
    "       preview VIDEO SECONDS WORDS PRESSES | play VIDEO SECONDS REEL-SECONDS WORDS PLAYED-SECONDS\n";

int run(const std::string& job, int argc, char** argv) {
    if (job == "start" && argc == 3)
        return bench::measureStart(std::atoll(argv[2]), argc, argv);
    drawWithoutGraphicsProcessor();
    const QApplication application(argc, argv);
    settleLocale();
    QFont font = QApplication::font();
    font.setFamilies(QStringList{QStringLiteral("Inter")} + font.families());
    QApplication::setFont(font);
    if (job == "drag" && argc == 2)
        bench::measureDragging();
    else if (job == "transcription" && argc == 3)
        bench::measureTranscription(argv[2]);
    else if (job == "words" && argc == 4)
        bench::measureWords(argv[2], std::atoi(argv[3]));
    else if (job == "fonts" && argc == 2)
        bench::measureFontMenu();
    else if (job == "preview" && argc == 6)
        bench::measurePreviewing(argv[2], std::atof(argv[3]), std::atoi(argv[4]), std::atoi(argv[5]));
    else if (job == "play" && argc == 7)
        bench::measurePlaying(argv[2], {std::atof(argv[3]), std::atof(argv[4]), std::atoi(argv[5])},
                              std::atof(argv[6]));
    else
        return std::fputs(kUsage, stderr), 2;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return std::fputs(kUsage, stderr), 2;
    // Nobody's own style is read or changed. A real folder: what saving costs is part of it.
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    try {
        return run(argv[1], argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvane-bench-window: %s\n", error.what());
        return 1;
    }
}
