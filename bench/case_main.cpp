// korvane-bench-case: one measured job in a process of its own, so that its memory and its start count too.
//
//   export      VIDEO SHAPE OUT.mp4   the export
//   encode      VIDEO SHAPE OUT.mp4   only the encoder, on the finished pictures out of memory; prints the
//   wall
//                                     and processor seconds of that part
//   pictures    VIDEO SHAPE OUT.yuv   the finished pictures, raw
//   lines       VIDEO SHAPE           the subtitle lines: start, end, text, with tabs between
//   extract     VIDEO                 the sound, as the recogniser gets it; prints its file
//   transcribe  AUDIO SECONDS         prints how many words were recognised
//
// A SHAPE is four numbers: seconds of the source, seconds of the reel, words, words in a phrase.
#include <sys/resource.h>

#include <QGuiApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/IdleQueue.h"
#include "bench/RawPictures.h"
#include "bench/Reel.h"
#include "media/SpeechService.h"
#include "media/VideoProcessor.h"
#include "platform/ffmpeg/MovieWriter.h"
#include "platform/speech/InstalledSpeechEngines.h"
#include "platform/speech/SystemSpeechAuthorization.h"

using namespace korvane;
using namespace korvane::bench;

namespace {

double processorSeconds() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

void encodeOnly(const std::string& video, const ReelShape& shape, const std::string& destination) {
    std::vector<std::shared_ptr<AVFrame>> pictures;
    const int rate = renderReel(
        video, shape, [&](std::shared_ptr<AVFrame> picture) { pictures.push_back(std::move(picture)); });
    const Size size = sizeOf(*pictures.front());
    const double before = processorSeconds();
    const auto start = std::chrono::steady_clock::now();
    const auto writer = MovieWriter::open(
        destination, VideoEncoding{static_cast<int>(size.width), static_cast<int>(size.height), rate},
        std::nullopt, {});
    for (auto& picture : pictures) {
        writer->writeVideo(picture);
        picture = nullptr;
    }
    writer->finish();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    std::printf("%.6f %.6f\n", wall.count(), processorSeconds() - before);
}

void writePictures(const std::string& video, const ReelShape& shape, const std::string& destination) {
    RawPictureFile file(destination);
    renderReel(video, shape, [&](const std::shared_ptr<AVFrame>& picture) { file.append(*picture); });
}

void printLines(const std::string& video, const ReelShape& shape) {
    for (const SubtitleEntry& line : subtitleLines(video, shape))
        std::printf("%.3f\t%.3f\t%s\n", line.start, line.end, line.text.c_str());
}

void extract(const std::string& video) {
    IdleQueue queue;
    const ExtractedAudio audio = VideoProcessor(queue).extractAudio(video, [](double) {}, {});
    std::printf("%s\n", audio.url.c_str());
}

void transcribe(const std::string& audio, double seconds) {
    IdleQueue queue;
    SystemSpeechAuthorization authorization;
    const auto engines = makeInstalledSpeechEngines();
    SpeechService service(queue, authorization, *engines);
    const auto words = service.transcribe(audio, seconds, Locale{"en-US"}, [](double) {}, {});
    std::printf("%zu\n", words.size());
}

int run(const std::vector<std::string>& arguments) {
    const std::string job = arguments.empty() ? "" : arguments[0];
    if (job == "extract" && arguments.size() == 2) {
        extract(arguments[1]);
        return 0;
    }
    if (job == "transcribe" && arguments.size() == 3) {
        transcribe(arguments[1], std::atof(arguments[2].c_str()));
        return 0;
    }
    if (arguments.size() < 6)
        return 2;
    const ReelShape shape{std::atof(arguments[2].c_str()), std::atof(arguments[3].c_str()),
                          std::atoi(arguments[4].c_str()), std::atoi(arguments[5].c_str())};
    if (job == "lines") {
        printLines(arguments[1], shape);
        return 0;
    }
    if (arguments.size() != 7)
        return 2;
    if (job == "export")
        exportReel(arguments[1], shape, arguments[6]);
    else if (job == "encode")
        encodeOnly(arguments[1], shape, arguments[6]);
    else if (job == "pictures")
        writePictures(arguments[1], shape, arguments[6]);
    else
        return 2;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // As the program itself: only what draws text needs fonts.
    const bool draws = !arguments.empty() && arguments[0] != "extract" && arguments[0] != "transcribe";
    const std::unique_ptr<QCoreApplication> application(draws ? new QGuiApplication(argc, argv)
                                                              : new QCoreApplication(argc, argv));
    try {
        const int result = run(arguments);
        if (result == 2)
            std::fprintf(stderr, "The jobs are listed at the top of bench/case_main.cpp.\n");
        return result;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
