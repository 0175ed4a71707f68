#include "platform/ffmpeg/Demuxer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/MediaProbe.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

std::string refusal(const std::filesystem::path& path) {
    try {
        Demuxer::open(path, {});
    } catch (const MediaError& error) {
        return error.what();
    }
    return "";
}

TEST(Demuxer, saysWhatIsWrongWithAFileInOneSentence) {
    const TemporaryFolder folder;
    const std::string name = (folder.path() / "none.mp4").string();
    EXPECT_EQ(refusal(name), "There is no file " + name + ".");
    EXPECT_EQ(refusal(folder.path()), folder.path().string() + " is a folder, not a video file.");
    EXPECT_EQ(refusal(folder.file("empty.mp4", "")), (folder.path() / "empty.mp4").string() + " is empty.");
    EXPECT_NE(refusal(folder.file("letter.mp4", std::string(5000, 'a'))).find("can't be read as a video"),
              std::string::npos);
}

TEST(Demuxer, opensNoPlaylistsAndNothingThatLeadsElsewhere) {
    const TemporaryFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
    fixtures::writeClip(clip, folder.path() / "clip.mov");
    EXPECT_NE(refusal(folder.file(
                  "list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\nclip.mov\n#EXT-X-ENDLIST\n")),
              "");
    EXPECT_NE(refusal(folder.file("list.ffconcat", "ffconcat version 1.0\nfile clip.mov\n")), "");
    EXPECT_NE(refusal("concat:" + (folder.path() / "clip.mov").string()), "");
}

TEST(Demuxer, aPipeIsRefusedInsteadOfWaitedFor) {
    const TemporaryFolder folder;
    const auto pipe = folder.path() / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(refusal(pipe), pipe.string() + " is not a regular file.");
}

TEST(Demuxer, aFileWithAColonOrAPercentSignInItsNameOpens) {
    const TemporaryFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
    for (const char* name : {"http:clip.mov", "100%d.mov", "-dash.mov", "Ünïcode 😀.mov"}) {
        fixtures::writeClip(clip, folder.path() / "clip.mov");
        std::filesystem::rename(folder.path() / "clip.mov", folder.path() / name);
        EXPECT_EQ(refusal(folder.path() / name), "") << name;
    }
}

TEST(Demuxer, aRequestedStopIsNoFailure) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(Demuxer::open("anything", stop.get_token()), CancellationError);
}

TEST(MediaProbe, aFragmentedFileIsMeasuredByItsPackets) {
    const TemporaryFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 6.0)};
    clip.container = "mp4";
    clip.muxerOptions = {{"movflags", "frag_keyframe"}};
    fixtures::writeClip(clip, folder.path() / "fragmented.mp4");
    EXPECT_NEAR(probeMedia(folder.path() / "fragmented.mp4").duration.seconds(), 6.0, 0.05);
}

TEST(MediaProbe, aMatroskaFileThatStartsLateIsAsLongAsItsPackets) {
    const TemporaryFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 3.0)};
    for (std::int64_t& time : clip.video[0].presentationTimes)
        time += 125;  // 5 s
    clip.container = "matroska";
    fixtures::writeClip(clip, folder.path() / "late.mkv");
    const MediaFacts facts = probeMedia(folder.path() / "late.mkv");
    EXPECT_NEAR(facts.duration.seconds(), 3.0, 0.05);
    EXPECT_NEAR(facts.streams.at(0).timeRange.start.seconds(), 0.0, 0.01);
}

TEST(MediaProbe, aLookForSoundFindsTheSameSoundAndLength) {
    const TemporaryFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({30, 1}, 3.0)};
    clip.audio = {fixtures::AudioSpec{}, fixtures::AudioSpec{}};
    clip.audio[1].channels = 2;
    for (const char* container : {"mov", "mp4", "matroska", "mpegts"}) {
        clip.container = container;
        const auto path = folder.path() / container;
        fixtures::writeClip(clip, path);
        const MediaFacts all = probeMedia(path);
        const MediaFacts sound = probeMedia(path, {}, ProbeInterest::sound);
        EXPECT_EQ(sound.duration, all.duration) << container;
        ASSERT_EQ(sound.streams.size(), all.streams.size()) << container;
        for (std::size_t i = 1; i < all.streams.size(); ++i) {
            EXPECT_EQ(sound.streams[i].channels, all.streams[i].channels) << container;
            EXPECT_EQ(sound.streams[i].sampleRateHz, all.streams[i].sampleRateHz) << container;
            EXPECT_EQ(sound.streams[i].timeRange, all.streams[i].timeRange) << container;
        }
    }
}

fixtures::ClipSpec clipOf(int widthPx) {
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({30, 1}, 2.0)};
    clip.video[0].widthPx = widthPx;
    clip.video[0].bFrames = 3;
    return clip;
}

TEST(Demuxer, aKnownFileIsOpenedWithoutLookingIntoItsPictures) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "clip.mov";
    fixtures::writeClip(clipOf(90), path);
    const auto looked = Demuxer::open(path, {});
    const auto known = looked->learnt();
    ASSERT_NE(known, nullptr);
    const auto told = Demuxer::open(path, {}, Demuxer::Interest::everything, known);
    const auto untouched = Demuxer::open(path, {}, Demuxer::Interest::everything, told->learnt());
    // Only who looks has packets lying ready, and so has read on.
    EXPECT_NE(avio_tell(told->format()->pb), avio_tell(looked->format()->pb));
    EXPECT_EQ(avio_tell(told->format()->pb), avio_tell(untouched->format()->pb));
    EXPECT_GT(looked->stream(0)->codecpar->video_delay, 0);
    EXPECT_EQ(told->stream(0)->codecpar->video_delay, looked->stream(0)->codecpar->video_delay);
    EXPECT_EQ(told->stream(0)->codecpar->format, looked->stream(0)->codecpar->format);
    EXPECT_EQ(told->stream(0)->start_time, looked->stream(0)->start_time);
}

TEST(Demuxer, aFileThatWasReplacedIsLookedAtAnew) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "clip.mov";
    fixtures::writeClip(clipOf(90), path);
    const auto known = Demuxer::open(path, {})->learnt();
    fixtures::writeClip(clipOf(180), path);
    EXPECT_EQ(Demuxer::open(path, {}, Demuxer::Interest::everything, known)->stream(0)->codecpar->width, 180);
}

}  // namespace
}  // namespace korvane
