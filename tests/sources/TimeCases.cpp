// Time lines as phones, recorders and cutters leave them.

#include <cmath>
#include <random>

#include "tests/fixtures/FileSurgery.h"
#include "tests/sources/SourceCase.h"

namespace korvane::sources {
namespace {

using fixtures::VideoSpec;

SourceCase rated(const std::string& name, int num, int den, int outputRate) {
    SourceCase source = plainCase(name);
    VideoSpec video = VideoSpec::constantRate({num, den}, 4.0);
    video.widthPx = 270;
    video.heightPx = 480;
    source.clip.video[0] = video;
    source.outputRate = outputRate;
    return source;
}

void addRates(std::vector<SourceCase>& cases) {
    cases.push_back(rated("rate23_976", 24'000, 1'001, 24));
    cases.push_back(rated("rate15", 15, 1, 15));
    cases.push_back(rated("rate10", 10, 1, 10));
    cases.push_back(rated("rate120", 120, 1, 120));
    cases.push_back(rated("onePictureASecond", 1, 1, 1));

    cases.push_back(plainCase("variableRate"));
    VideoSpec& video = cases.back().clip.video[0];
    video.timeBase = {1, 90'000};
    video.presentationTimes.clear();
    std::mt19937 random(5);
    for (std::int64_t time = 0; time < 360'000; time += 1'500 + static_cast<std::int64_t>(random() % 4'500))
        video.presentationTimes.push_back(time);
    cases.back().outputRate = 0;

    // A screen recorder writes a picture when something changes.
    cases.push_back(plainCase("longStills"));
    VideoSpec& stills = cases.back().clip.video[0];
    stills.timeBase = {1, 1'000};
    stills.presentationTimes = {0, 40, 80, 120, 700, 733, 1'500, 1'520, 2'600, 2'640, 3'900};
    cases.back().outputRate = 0;
}

void addStarts(std::vector<SourceCase>& cases) {
    cases.push_back(plainCase("lateSound"));
    cases.back().clip.audio[0].startSeconds = 0.7;
    cases.back().soundFrom = 0.7;
    cases.push_back(plainCase("soundBeforeTheStart"));
    cases.back().clip.audio[0].startSeconds = -0.4;
    cases.push_back(plainCase("lateVideo"));
    VideoSpec& late = cases.back().clip.video[0];
    for (auto& time : late.presentationTimes)
        time += 21;  // 0.7 s: the first word begins before the first picture, which is shown from the start
    cases.back().frameAt = [](double seconds) {
        return static_cast<int>(std::max(0.0, std::floor(seconds * 30.0 + 1e-6) - 21));
    };
    cases.push_back(plainCase("lateVideoInTransportStream"));
    for (auto& time : cases.back().clip.video[0].presentationTimes)
        time += 21;
    cases.back().clip.container = "mpegts";
    cases.back().fileName = "clip.ts";
    cases.back().soundToleranceSamples = 3.0;

    cases.push_back(plainCase("shorterSound"));
    cases.back().clip.audio[0].durationSeconds = 1.5;
    cases.back().soundTo = 1.5;
    cases.push_back(plainCase("longerSound"));
    cases.back().clip.audio[0].durationSeconds = 6.0;
    cases.back().words.push_back({4.5, 4.9});  // the last picture stays
    cases.back().frameAt = [](double seconds) {
        return std::min(119, static_cast<int>(seconds * 30.0 + 1e-6));
    };
}

void addEditLists(std::vector<SourceCase>& cases) {
    using fixtures::Edit;
    const auto edited = [&cases](const std::string& name, std::vector<Edit> edits) -> SourceCase& {
        cases.push_back(plainCase(name));
        cases.back().surgery = [edits](const std::filesystem::path& path) {
            fixtures::setEditList(path, 0, edits);
        };
        return cases.back();
    };
    // The picture is cut by a second in front: it runs ahead of its numbers.
    edited("editListCutsTheStart", {{3.0, 1.0}}).frameAt = [](double seconds) {
        return 30 + static_cast<int>(seconds * 30.0 + 1e-6);
    };
    edited("editListDelaysTheStart", {{0.4, std::nullopt}, {3.6, 0.0}}).frameAt = [](double seconds) {
        return std::max(0, static_cast<int>(std::floor((seconds - 0.4) * 30.0 + 1e-6)));
    };
    edited("editListWithoutEntries", {}).frameAt = [](double seconds) {
        return static_cast<int>(seconds * 30.0 + 1e-6);
    };
    edited("editListDelaysAndCuts", {{0.2, std::nullopt}, {3.5, 0.5}}).frameAt = [](double seconds) {
        return seconds < 0.2 ? 15 : static_cast<int>(std::floor((seconds + 0.3) * 30.0 + 1e-6));
    };
    // The cut doesn't lie on a key frame nor on a frame at all: the frame that covers it is shown first.
    edited("editListCutsInsideAGroup", {{3.0, 0.75}}).frameAt = [](double seconds) {
        return static_cast<int>((seconds + 0.75) * 30.0 + 1e-6);
    };
    SourceCase& sound = edited("editListCutsTheSound", {});
    sound.surgery = [](const std::filesystem::path& path) {
        fixtures::setEditList(path, 1, {{3.0, 1'024.0 / 48'000 + 0.5}});
    };
    sound.frameAt = {};
    sound.soundDelaySeconds = -0.5;
}

void addContainers(std::vector<SourceCase>& cases) {
    cases.push_back(plainCase("fragmented"));
    cases.back().clip.container = "mp4";
    cases.back().fileName = "clip.mp4";
    cases.back().clip.muxerOptions = {{"movflags", "frag_keyframe+empty_moov+delay_moov+default_base_moof"}};
    cases.push_back(plainCase("fragmentedWithReordering"));
    cases.back().clip.container = "mp4";
    cases.back().fileName = "clip.mp4";
    cases.back().clip.video[0].bFrames = 2;
    cases.back().clip.muxerOptions = {{"movflags", "frag_keyframe+empty_moov+delay_moov"}};
    // Written before anything is known of the sound's delay: the file itself has it late.
    cases.push_back(plainCase("fragmentedWithoutEditLists"));
    cases.back().clip.container = "mp4";
    cases.back().fileName = "clip.mp4";
    cases.back().clip.muxerOptions = {{"movflags", "frag_keyframe+empty_moov"}};
    cases.back().soundDelaySeconds = 1'024.0 / 48'000;
    cases.push_back(plainCase("indexInFront"));
    cases.back().clip.muxerOptions = {{"movflags", "faststart"}};
    cases.push_back(plainCase("negativeCompositionOffsets"));
    cases.back().clip.video[0].bFrames = 2;
    cases.back().clip.muxerOptions = {{"movflags", "negative_cts_offsets"}};

    for (const auto& [name, value] :
         {std::pair{"durationsOfZero", 0U}, std::pair{"durationsUnknown", 0xFFFFFFFFU},
          std::pair{"durationsTooLong", 100'000'000U}}) {
        cases.push_back(plainCase(name));
        cases.back().surgery = [value = value](const std::filesystem::path& path) {
            fixtures::setEditList(path, 0, {});
            fixtures::setDeclaredDurations(path, value);
        };
    }
    cases.push_back(plainCase("liveMatroska"));
    cases.back().clip.container = "matroska";
    cases.back().fileName = "clip.mkv";
    cases.back().clip.muxerOptions = {{"live", "1"}};
    cases.back().soundToleranceSamples = 50.0;

    cases.push_back(plainCase("coverPictureInMp4"));
    cases.back().clip.container = "mp4";
    cases.back().fileName = "clip.mp4";
    cases.back().clip.coverPicture = true;
    cases.push_back(plainCase("coverPictureInMatroska"));
    cases.back().clip.container = "matroska";
    cases.back().fileName = "clip.mkv";
    cases.back().clip.coverPicture = true;
    cases.back().soundToleranceSamples = 50.0;
    cases.push_back(plainCase("twoVideoTracks"));
    VideoSpec second = VideoSpec::constantRate({30, 1}, 4.0);
    second.color.matrix = "smpte170m";
    second.orientation = 3;
    cases.back().clip.video.push_back(second);
}

/// Packets whose times repeat or run backwards. Where it happens no particular frame is right; elsewhere the
/// times are plain.
void addBrokenTimes(std::vector<SourceCase>& cases) {
    const auto broken = [&cases](const std::string& name) -> std::vector<std::int64_t>& {
        cases.push_back(plainCase(name));
        VideoSpec& video = cases.back().clip.video[0];
        video.codec = "mpeg4";
        video.gopFrames = 1;
        video.timeBase = {1, 3'000};
        video.packetTimes.clear();
        for (std::size_t i = 0; i < video.presentationTimes.size(); ++i) {
            video.presentationTimes[i] = static_cast<std::int64_t>(i) * 100;
            video.packetTimes.push_back(static_cast<std::int64_t>(i) * 100);
        }
        video.color = {"smpte170m", "", "", false, false};
        cases.back().outputRate = 0;
        // The broken stretch lies in the second word.
        cases.back().frameAt = [](double seconds) -> std::optional<int> {
            if (seconds > 1.2 && seconds < 1.9)
                return std::nullopt;
            return static_cast<int>(seconds * 30.0 + 1e-6);
        };
        return video.packetTimes;
    };
    auto& repeated = broken("timesRepeat");
    repeated[45] = repeated[46] = repeated[44];
    auto& backwards = broken("timesRunBackwards");
    std::swap(backwards[44], backwards[47]);
    backwards[50] -= 350;
}

}  // namespace

std::vector<SourceCase> timeCases() {
    std::vector<SourceCase> cases;
    addRates(cases);
    addStarts(cases);
    addEditLists(cases);
    addContainers(cases);
    addBrokenTimes(cases);
    return cases;
}

}  // namespace korvane::sources
