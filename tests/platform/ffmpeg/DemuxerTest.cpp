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

}  // namespace
}  // namespace korvane
