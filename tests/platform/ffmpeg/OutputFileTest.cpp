#include "platform/ffmpeg/OutputFile.h"

#include <gtest/gtest.h>

#include "platform/ffmpeg/MediaError.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

void writeInto(const OutputFile& file, const std::string& text) {
    std::ofstream(file.workingPath()) << text;
}
std::size_t entriesOf(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

TEST(OutputFile, appearsOnlyWhenItIsPublished) {
    const TemporaryFolder folder;
    const auto destination = folder.path() / "reel.mp4";
    OutputFile file(destination);
    writeInto(file, "complete");
    EXPECT_FALSE(std::filesystem::exists(destination));
    file.publish();
    EXPECT_EQ(contentOf(destination), "complete");
    EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(OutputFile, leavesNothingWhenItIsGivenUp) {
    const TemporaryFolder folder;
    {
        const OutputFile file(folder.path() / "reel.mp4");
        writeInto(file, "half");
    }
    EXPECT_EQ(entriesOf(folder.path()), 0U);
}

TEST(OutputFile, replacesAFileOfThatNameInOneStep) {
    const TemporaryFolder folder;
    const auto destination = folder.file("reel.mp4", "old");
    OutputFile file(destination);
    writeInto(file, "new");
    EXPECT_EQ(contentOf(destination), "old");
    file.publish();
    EXPECT_EQ(contentOf(destination), "new");
    EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(OutputFile, twoForTheSameNameDoNotDisturbEachOther) {
    const TemporaryFolder folder;
    OutputFile first(folder.path() / "reel.mp4");
    OutputFile second(folder.path() / "reel.mp4");
    writeInto(first, "first");
    writeInto(second, "second");
    first.publish();
    second.publish();
    EXPECT_EQ(contentOf(folder.path() / "reel.mp4"), "second");
    EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(OutputFile, aMissingFolderOrAFolderInItsPlaceIsSaid) {
    const TemporaryFolder folder;
    EXPECT_THROW(OutputFile(folder.path() / "nowhere" / "reel.mp4"), MediaError);
    EXPECT_THROW(OutputFile(folder.path()), MediaError);
    try {
        const OutputFile file(folder.path() / "nowhere" / "reel.mp4");
        FAIL();
    } catch (const MediaError& error) {
        EXPECT_NE(std::string(error.what()).find("does not exist"), std::string::npos) << error.what();
    }
}

}  // namespace
}  // namespace korvane
