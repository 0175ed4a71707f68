// Orientation, pixel aspect, size and colour.

#include "tests/sources/SourceCase.h"

namespace korvane::sources {
namespace {

using fixtures::ColorTags;
using fixtures::VideoSpec;

SourceCase shaped(const std::string& name, int width, int height) {
    SourceCase source = plainCase(name);
    source.clip.video[0].widthPx = width;
    source.clip.video[0].heightPx = height;
    return source;
}

void addOrientations(std::vector<SourceCase>& cases) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        // Stored as a landscape sensor delivers it, seen upright or not.
        cases.push_back(shaped("orientation" + std::to_string(orientation), 640, 360));
        cases.back().clip.video[0].orientation = orientation;
    }
    cases.push_back(shaped("orientation6OfAWidePixel", 270, 360));
    cases.back().clip.video[0].orientation = 6;
    cases.back().clip.video[0].pixelAspect = {64, 27};
}

void addShapes(std::vector<SourceCase>& cases) {
    cases.push_back(shaped("square", 400, 400));
    cases.push_back(shaped("fullHd", 1920, 1080));
    cases.push_back(shaped("ultraHd", 3840, 2160));
    cases.push_back(shaped("small", 64, 112));
    cases.push_back(shaped("tallerThanTheCanvas", 180, 400));
    cases.push_back(shaped("pixelAspect2To3", 480, 360));
    cases.back().clip.video[0].pixelAspect = {2, 3};
    cases.push_back(shaped("pixelAspect64To45", 720, 576));
    cases.back().clip.video[0].pixelAspect = {64, 45};
    cases.push_back(shaped("oddSize420", 179, 319));
    cases.back().clip.video[0].codec = "ffv1";
    cases.back().fileName = "clip.mkv";
    cases.back().clip.container = "matroska";
    cases.back().soundToleranceSamples = 30.0;
}

void addColors(std::vector<SourceCase>& cases) {
    struct Tags {
        const char* name;
        ColorTags color;
        const char* pixelFormat;
    };
    const std::vector<Tags> exact{
        {"bt709Limited", {}, "yuv420p"},
        {"bt709Full", {"bt709", "bt709", "bt709", true, true}, "yuv420p"},
        {"bt601Limited", {"smpte170m", "bt709", "bt709", false, true}, "yuv420p"},
        {"bt601Full", {"smpte170m", "bt709", "bt709", true, true}, "yuv420p"},
        {"bt470bgLimited", {"bt470bg", "bt709", "bt709", false, true}, "yuv420p"},
        {"chroma422", {}, "yuv422p"},
        {"chroma444", {}, "yuv444p"},
        {"tenBit420", {}, "yuv420p10le"},
        {"tenBit422", {}, "yuv422p10le"},
        {"tenBit444", {}, "yuv444p10le"},
        {"tenBitFull", {"bt709", "bt709", "bt709", true, true}, "yuv420p10le"},
        {"semiPlanar", {}, "nv12"},
    };
    for (const Tags& tags : exact) {
        cases.push_back(plainCase(tags.name));
        cases.back().clip.video[0].color = tags.color;
        cases.back().clip.video[0].pixelFormat = tags.pixelFormat;
    }
    // High definition without tags is BT.709, standard definition BT.601; the writer uses the matrix named
    // here.
    cases.push_back(shaped("untaggedHighDefinition", 1280, 720));
    cases.back().clip.video[0].color.tagged = false;
    cases.push_back(shaped("untaggedStandardDefinition", 720, 480));
    cases.back().clip.video[0].color = {"smpte170m", "", "", false, false};

    for (const char* format : {"gray", "gray10le"}) {
        cases.push_back(plainCase(std::string("grey_") + format));
        cases.back().clip.video[0].pixelFormat = format;
        cases.back().colors = ColorCheck::grey;
    }

    // What is in BT.2020 primaries is more saturated than the same numbers in BT.709: hue only.
    cases.push_back(plainCase("bt2020Standard"));
    cases.back().clip.video[0].pixelFormat = "yuv420p10le";
    cases.back().clip.video[0].color = {"bt2020nc", "bt2020", "bt2020-10", false, true};
    cases.back().colors = ColorCheck::plausible;
    // Reference white of HLG is 75 % of the signal, of PQ 58 %.
    for (const auto& [name, transfer, white] :
         {std::tuple{"hlg", "arib-std-b67", 0.75}, std::tuple{"pq", "smpte2084", 0.58}}) {
        for (const char* codec : {"libx264", "libx265"}) {
            cases.push_back(plainCase(std::string(name) + "_" + codec));
            VideoSpec& video = cases.back().clip.video[0];
            video.codec = codec;
            video.pixelFormat = "yuv420p10le";
            video.color = {"bt2020nc", "bt2020", transfer, false, true};
            video.whiteSignal = white;
            cases.back().colors = ColorCheck::plausible;
        }
    }
}

}  // namespace

SourceCase plainCase(std::string name) {
    SourceCase source{std::move(name), {}};
    source.clip.video.push_back(VideoSpec::constantRate({30, 1}, 4.0));
    source.clip.video[0].widthPx = 270;
    source.clip.video[0].heightPx = 480;
    source.clip.audio.push_back({});
    return source;
}

std::vector<SourceCase> pictureCases() {
    std::vector<SourceCase> cases;
    addOrientations(cases);
    addShapes(cases);
    addColors(cases);
    return cases;
}

}  // namespace korvane::sources
