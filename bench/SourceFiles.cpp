#include "bench/SourceFiles.h"

#include <fstream>
#include <functional>
#include <iostream>

#include "bench/ChildProcess.h"
#include "bench/GeneratedPicture.h"

namespace korvane::bench {
namespace {

constexpr int kRate = 30;
constexpr int kMinuteSeconds = 60;

constexpr const char* kSound =
    "anoisesrc=color=pink:amplitude=0.3:sample_rate=48000:seed=1,tremolo=f=4:d=0.8,"
    "aformat=channel_layouts=stereo";

constexpr const char* kStory =
    "Every morning my father walked down to the station and took the early train to the city. He always "
    "carried the same brown bag, a newspaper, and two apples. In the evening he told us what he had seen. "
    "One day a man had lost his hat out of the window. Another day the train had stopped in the middle of "
    "a field, and nobody could say why. We listened and asked him to begin again.\n";

/// Makes a file beside its place, so that a run that is broken off leaves no half of one.
std::filesystem::path madeOnce(const std::filesystem::path& file,
                               const std::function<void(const std::string&)>& make) {
    if (std::filesystem::exists(file))
        return file;
    std::cerr << "Making " << file.filename().string() << " ..." << std::endl;
    const auto unfinished = file.parent_path() / ("unfinished-" + file.filename().string());
    make(unfinished.string());
    std::filesystem::rename(unfinished, file);
    return file;
}

/// A list of the same file so many times, for ffmpeg's concat demuxer.
std::string partsList(const std::filesystem::path& file, int times) {
    const auto list = file.parent_path() / "parts.txt";
    std::ofstream lines(list);
    for (int i = 0; i < times; ++i)
        lines << "file '" << file.filename().string() << "'\n";
    return list.string();
}

}  // namespace

SourceFiles::SourceFiles(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
}

std::filesystem::path SourceFiles::minute() const {
    return madeOnce(folder_ / "minute.mp4", [](const std::string& destination) {
        GeneratedPicture picture;
        int i = 0;
        // clang-format off
        feedChild({"ffmpeg", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", "1920x1080",
                   "-r", std::to_string(kRate), "-i", "-",
                   "-f", "lavfi", "-i", kSound, "-t", std::to_string(kMinuteSeconds),
                   "-c:v", "libx264", "-preset", "veryfast", "-profile:v", "high", "-b:v", "15M",
                   "-maxrate", "17M", "-bufsize", "17M", "-g", std::to_string(kRate), "-sc_threshold", "0", "-bf", "0",
                   "-c:a", "aac", "-b:a", "192k", "-movflags", "+faststart", destination},
                  [&]() -> const std::vector<std::uint8_t>* {
                      if (i == kMinuteSeconds * kRate)
                          return nullptr;
                      return &picture.at(static_cast<double>(i++) / kRate);
                  });
        // clang-format on
    });
}

std::filesystem::path SourceFiles::video(int minutes) const {
    return madeOnce(folder_ / ("video-" + std::to_string(minutes) + ".mp4"),
                    [&](const std::string& destination) {
                        runChild({"ffmpeg",    "-v",
                                  "error",     "-y",
                                  "-f",        "concat",
                                  "-i",        partsList(minute(), minutes),
                                  "-f",        "lavfi",
                                  "-i",        kSound,
                                  "-map",      "0:v",
                                  "-map",      "1:a",
                                  "-t",        std::to_string(minutes * kMinuteSeconds),
                                  "-c:v",      "copy",
                                  "-c:a",      "aac",
                                  "-b:a",      "192k",
                                  "-movflags", "+faststart",
                                  destination});
                    });
}

std::filesystem::path SourceFiles::light(int minutes) const {
    if (minutes > 1)
        return madeOnce(folder_ / ("light-" + std::to_string(minutes) + ".mp4"),
                        [&](const std::string& destination) {
                            // The parts' own sound would overlap at the seams and could not be taken out as
                            // it is.
                            // clang-format off
                runChild({"ffmpeg", "-v", "error", "-y", "-f", "concat", "-i", partsList(light(1), minutes),
                          "-f", "lavfi", "-i", kSound, "-map", "0:v", "-map", "1:a",
                          "-t", std::to_string(minutes * kMinuteSeconds), "-c:v", "copy", "-c:a", "aac",
                          "-b:a", "192k", "-movflags", "+faststart", destination});
                            // clang-format on
                        });
    return madeOnce(folder_ / "light-1.mp4", [&](const std::string& destination) {
        runChild({"ffmpeg",
                  "-v",
                  "error",
                  "-y",
                  "-i",
                  minute().string(),
                  "-c:v",
                  "libx264",
                  "-preset",
                  "veryfast",
                  "-b:v",
                  "1500k",
                  "-g",
                  std::to_string(kRate),
                  "-sc_threshold",
                  "0",
                  "-bf",
                  "0",
                  "-c:a",
                  "copy",
                  "-movflags",
                  "+faststart",
                  destination});
    });
}

std::filesystem::path SourceFiles::halfMinuteAt60() const {
    return madeOnce(folder_ / "half-minute-at-60.mp4", [&](const std::string& destination) {
        runChild({"ffmpeg",    "-v",
                  "error",     "-y",
                  "-itsscale", "0.5",
                  "-i",        minute().string(),
                  "-f",        "lavfi",
                  "-i",        kSound,
                  "-map",      "0:v",
                  "-map",      "1:a",
                  "-t",        std::to_string(kMinuteSeconds / 2),
                  "-c:v",      "copy",
                  "-c:a",      "aac",
                  "-b:a",      "192k",
                  "-movflags", "+faststart",
                  destination});
    });
}

std::filesystem::path SourceFiles::rareKeys() const {
    return madeOnce(folder_ / "rare-keys.mp4", [&](const std::string& destination) {
        runChild({"ffmpeg", "-v", "error", "-y", "-i", minute().string(), "-c:v", "libx264", "-preset",
                  "veryfast", "-crf", "23", "-c:a", "copy", "-movflags", "+faststart", destination});
    });
}

std::filesystem::path SourceFiles::speech(int minutes) const {
    if (minutes > 1)
        return madeOnce(folder_ / ("speech-" + std::to_string(minutes) + ".m4a"),
                        [&](const std::string& destination) {
                            runChild({"ffmpeg", "-v", "error", "-y", "-f", "concat", "-i",
                                      partsList(speech(1), minutes), "-c", "copy", destination});
                        });
    return madeOnce(folder_ / "speech-1.m4a", [this](const std::string& destination) {
        const auto text = folder_ / "story.txt";
        std::ofstream story(text);
        for (int i = 0; i < 4; ++i)  // spoken in some 20 s each
            story << kStory;
        story.close();
        const auto wave = folder_ / "story.wav";
        runChild({"flite", "-voice", "rms", "-f", text.string(), "-o", wave.string()});
        runChild({"ffmpeg", "-v", "error", "-y", "-i", wave.string(), "-t", std::to_string(kMinuteSeconds),
                  "-ar", "48000", "-c:a", "aac", "-b:a", "96k", destination});
    });
}

std::filesystem::path SourceFiles::spokenVideo(int minutes) const {
    return madeOnce(folder_ / ("spoken-" + std::to_string(minutes) + ".mp4"),
                    [&](const std::string& destination) {
                        runChild({"ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
                                  "color=navy:s=1280x720:r=30", "-i", speech(minutes).string(), "-shortest",
                                  "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "copy", destination});
                    });
}

}  // namespace korvane::bench
