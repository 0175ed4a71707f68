#include "platform/ffmpeg/ContainerStructure.h"

#include <gtest/gtest.h>

#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

class Containers : public testing::TestWithParam<const char*> {};

TEST_P(Containers, aFileThatWasCutShortIsTold) {
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 2.0)};
    clip.container = GetParam();
    clip.muxerOptions = {};
    const TemporaryFolder folder;
    const auto path = folder.path() / "clip";
    fixtures::writeClip(clip, path);
    EXPECT_FALSE(structureReachesBeyondEnd(path));
    const auto size = std::filesystem::file_size(path);
    for (const auto left : {size - 3, size * 3 / 4, size / 2}) {
        std::filesystem::resize_file(path, left);
        EXPECT_TRUE(structureReachesBeyondEnd(path)) << left << " of " << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Containers, testing::Values("mov", "mp4", "matroska", "avi"));

TEST(ContainerStructure, fragmentsAreFound) {
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 2.0)};
    clip.container = "mp4";
    const TemporaryFolder folder;
    fixtures::writeClip(clip, folder.path() / "plain.mp4");
    EXPECT_FALSE(hasMovieFragments(folder.path() / "plain.mp4"));
    clip.muxerOptions = {{"movflags", "frag_keyframe+empty_moov"}};
    fixtures::writeClip(clip, folder.path() / "fragmented.mp4");
    EXPECT_TRUE(hasMovieFragments(folder.path() / "fragmented.mp4"));
}

TEST(ContainerStructure, otherFilesAreLeftAlone) {
    const TemporaryFolder folder;
    EXPECT_FALSE(structureReachesBeyondEnd(folder.path() / "none"));
    EXPECT_FALSE(structureReachesBeyondEnd(folder.file("empty", "")));
    EXPECT_FALSE(structureReachesBeyondEnd(
        folder.file("text", "This is a letter, not a film, and it goes on for a while.")));
    EXPECT_FALSE(hasMovieFragments(folder.file("short", "moo")));
}

}  // namespace
}  // namespace korvane
