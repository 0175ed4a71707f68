#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "editor/VideoEditor.h"
#include "media/VideoProcessor.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fuzz/Fuzzers.h"

namespace korvane::fuzz {
namespace {

using fixtures::ClipSpec;

struct ImmediateQueue : MainQueue {
    void post(std::function<void()> work) override { work(); }
};

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

ClipSpec clip(const std::string& container, const std::string& videoCodec, const std::string& audioCodec) {
    ClipSpec spec;
    spec.video = {fixtures::VideoSpec::constantRate({15, 1}, 1.2)};
    spec.video[0].widthPx = 54;
    spec.video[0].heightPx = 96;
    spec.video[0].codec = videoCodec;
    spec.video[0].gopFrames = 6;
    spec.audio = {fixtures::AudioSpec{}};
    spec.audio[0].codec = audioCodec;
    spec.audio[0].durationSeconds = 1.2;
    spec.container = container;
    return spec;
}

std::vector<ClipSpec> clips() {
    std::vector<ClipSpec> all = {clip("mp4", "libx264", "aac"),      clip("mov", "libx264", "pcm_s16le"),
                                 clip("matroska", "libx264", "aac"), clip("mpegts", "libx264", "aac"),
                                 clip("avi", "mpeg4", "pcm_s16le"),  clip("mov", "mjpeg", "aac"),
                                 clip("mp4", "libx264", "aac")};
    all[1].video[0].orientation = 6;
    all[2].video[0].bFrames = 2;
    all.back().muxerOptions = {{"movflags", "frag_keyframe+empty_moov"}};
    all.push_back(clip("mov", "libx264", "aac"));
    all.back().video[0].pixelFormat = "yuv420p10le";
    all.back().video[0].color = {"bt2020nc", "bt2020", "arib-std-b67", false, true};
    all.back().coverPicture = false;
    all.back().audio.push_back(fixtures::AudioSpec{});
    all.back().audio[1].durationSeconds = 1.0;
    return all;
}

/// Runs one service call; an error must have something to say.
template <class Call>
void expectSentence(Call call) {
    try {
        call();
    } catch (const std::bad_alloc&) {
        // A damaged length may ask for more memory than there is; that is refused, not survived by luck.
    } catch (const std::exception& error) {
        if (std::string(error.what()).empty())
            throw std::logic_error("an error without a sentence");
    }
}

}  // namespace

MediaFuzzer::MediaFuzzer(const std::filesystem::path& folder) : folder_(folder), input_(folder / "input") {
    for (const ClipSpec& spec : clips()) {
        fixtures::writeClip(spec, folder_ / "seed");
        seeds_.push_back(bytesOf(folder_ / "seed"));
    }
    std::filesystem::remove(folder_ / "seed");
}

void MediaFuzzer::round(Random& random) {
    const std::string damaged = mutated(seeds_[random() % seeds_.size()], random);
    std::ofstream(input_, std::ios::binary | std::ios::trunc) << damaged;

    ImmediateQueue queue;
    expectSentence([&] {
        const auto extracted = VideoProcessor(queue).extractAudio(input_, [](double) {}, {});
        std::filesystem::remove(extracted.url);
    });
    std::vector<SpeechSegment> words;
    for (int i = 0; i < 3; ++i) {
        const double start = static_cast<double>(random() % 1400) / 1000.0;
        words.emplace_back("Wort " + std::to_string(i), start,
                           start + static_cast<double>(random() % 200) / 1000.0);
    }
    expectSentence([&] {
        VideoEditor(queue, silentLog())
            .exportVideo(input_, words, SubtitleSettings(), folder_ / "reel.mp4", [](double) {}, {});
    });
    std::filesystem::remove(folder_ / "reel.mp4");
    if (std::distance(std::filesystem::directory_iterator(folder_), {}) != 1)
        throw std::logic_error("something was left behind in " + folder_.string());
}

}  // namespace korvane::fuzz
