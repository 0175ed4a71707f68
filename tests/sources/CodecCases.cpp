// Codecs and containers, as cameras, recorders, editors and browsers write them.

#include "tests/fixtures/ClipWriter.h"
#include "tests/sources/SourceCase.h"

namespace korvane::sources {
namespace {

struct Kind {
    const char* name;
    const char* codec;
    const char* pixelFormat;
    const char* container;
    const char* fileName;
    const char* audioCodec;
    int gop;
    int bFrames;
};

constexpr Kind kKinds[] = {
    {"h264WithReordering", "libx264", "yuv420p", "mp4", "clip.mp4", "aac", 60, 3},
    {"hevc", "libx265", "yuv420p", "mp4", "clip.mp4", "aac", 30, 3},
    {"av1", "libsvtav1", "yuv420p", "mp4", "clip.mp4", "aac", 30, 0},
    {"mpeg4", "mpeg4", "yuv420p", "mp4", "clip.mp4", "aac", 30, 2},
    {"motionJpeg", "mjpeg", "yuvj420p", "mov", "clip.mov", "pcm_s16le", 1, 0},
    {"prores422", "prores_ks", "yuv422p10le", "mov", "clip.mov", "pcm_s16le", 1, 0},
    {"prores4444WithAlpha", "prores_ks", "yuva444p10le", "mov", "clip.mov", "pcm_s16le", 1, 0},
    {"animationWithAlpha", "qtrle", "argb", "mov", "clip.mov", "pcm_s16le", 30, 0},
    {"pngFrames", "png", "rgb24", "mov", "clip.mov", "pcm_s16le", 1, 0},
    {"h264Rgb", "libx264rgb", "bgr0", "matroska", "clip.mkv", "flac", 30, 0},
    {"packed422", "rawvideo", "uyvy422", "mov", "clip.mov", "pcm_s16le", 1, 0},
    {"ffv1", "ffv1", "yuv444p", "matroska", "clip.mkv", "flac", 10, 0},
    {"vp8WebmVorbis", "libvpx", "yuv420p", "webm", "clip.webm", "libvorbis", 30, 0},
    {"vp9WebmOpus", "libvpx-vp9", "yuv420p", "webm", "clip.webm", "libopus", 30, 0},
    {"vp9With444", "libvpx-vp9", "yuv444p", "webm", "clip.webm", "libopus", 30, 0},
    {"vp9WithAlpha", "libvpx-vp9", "yuva420p", "webm", "clip.webm", "libopus", 30, 0},
    {"matroskaH264Aac", "libx264", "yuv420p", "matroska", "clip.mkv", "aac", 60, 3},
    {"transportStream", "libx264", "yuv420p", "mpegts", "clip.ts", "aac", 30, 2},
    {"mpeg2ProgramStream", "mpeg2video", "yuv420p", "vob", "clip.mpg", "mp2", 15, 2},
    {"aviMpeg4Mp3", "mpeg4", "yuv420p", "avi", "clip.avi", "libmp3lame", 30, 0},
    {"flash", "flv", "yuv420p", "flv", "clip.flv", "aac", 30, 0},
    {"theora", "libtheora", "yuv420p", "ogg", "clip.ogv", "libvorbis", 30, 0},
};

SourceCase caseOf(const Kind& kind) {
    SourceCase source = plainCase(kind.name);
    fixtures::VideoSpec& video = source.clip.video[0];
    video.codec = kind.codec;
    video.pixelFormat = kind.pixelFormat;
    video.gopFrames = kind.gop;
    video.bFrames = kind.bFrames;
    source.clip.audio[0].codec = kind.audioCodec;
    source.clip.container = kind.container;
    source.fileName = kind.fileName;
    const std::string container = kind.container;
    // These containers count in milliseconds.
    if (container == "matroska" || container == "webm" || container == "flv")
        source.soundToleranceSamples = 50.0;
    if (container == "mpegts" || container == "vob" || container == "ogg")
        source.soundToleranceSamples = 3.0;
    // This writer moves pictures, but not Opus, by the codec's delay of 312 samples.
    if (std::string(kind.audioCodec) == "libopus")
        source.soundDelaySeconds = -312.0 / 48'000;
    // AVI says nothing of a codec's delay: 576 + 529 samples.
    if (container == "avi")
        source.soundDelaySeconds = 1'105.0 / 48'000;
    return source;
}

}  // namespace

std::vector<SourceCase> codecCases() {
    std::vector<SourceCase> cases;
    for (const Kind& kind : kKinds) {
        if (!fixtures::hasEncoder(kind.codec) || !fixtures::hasEncoder(kind.audioCodec))
            continue;
        cases.push_back(caseOf(kind));
        const std::string codec = kind.codec;
        fixtures::VideoSpec& video = cases.back().clip.video[0];
        if (codec == "mjpeg")
            video.color = {"smpte170m", "bt709", "bt709", true, true};
        if (codec == "libx265")
            video.options = {{"preset", "ultrafast"}, {"x265-params", "log-level=error:bframes=3"}};
        if (codec == "libsvtav1")
            video.options = {{"preset", "10"}};
        if (codec == "libvpx-vp9" || codec == "libvpx")
            video.options = {{"deadline", "realtime"}, {"cpu-used", "8"}, {"b", "3000000"}};
        if (codec == "flv" || codec == "libtheora")
            video.options = {{"b", "4000000"}};
        // Old formats without colour tags, in standard definition.
        if (codec == "flv" || codec == "libtheora" || codec == "libvpx" || codec == "mpeg4" ||
            codec == "mpeg2video" || codec == "rawvideo")
            video.color = {"smpte170m", "", "", false, false};
        if (codec == "png" || codec == "qtrle" || codec == "libx264rgb")
            video.color.tagged = false;
    }
    return cases;
}

}  // namespace korvane::sources
