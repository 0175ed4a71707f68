#include "editor/DestinationGuards.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "editor/ExportError.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

struct DestinationGuardsTest : testing::Test {
    TemporaryFolder folder;
    fs::path source = folder.file("talk.mp4", "the recording");

    fs::path at(const std::string& name) const { return folder.path() / name; }

    /// Expects a refusal whose sentence names the destination and ends like this.
    void expectRefused(const fs::path& destination, const std::string& reason) {
        try {
            clearDestination(destination, source);
            ADD_FAILURE() << destination << " was not refused";
        } catch (const ExportError& error) {
            EXPECT_EQ(error, ExportError::exportFailed(destination.string() + reason));
        }
        EXPECT_EQ(contentOf(source), "the recording");
    }
};

constexpr const char* kIsSource = " is the source video itself. Choose another name for the reel.";

TEST_F(DestinationGuardsTest, anOldFileIsRemoved) {
    const fs::path old = folder.file("reel.mp4", "old");
    clearDestination(old, source);
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(source));
}

TEST_F(DestinationGuardsTest, aFreeNameStaysFree) {
    EXPECT_NO_THROW(clearDestination(at("reel.mp4"), source));
    EXPECT_NO_THROW(clearDestination(at("no/such/folder/reel.mp4"), source));
}

TEST_F(DestinationGuardsTest, theSourceIsRefusedByItsOwnPath) {
    expectRefused(source, kIsSource);
}

TEST_F(DestinationGuardsTest, theSourceIsRefusedByAnotherSpellingOfItsPath) {
    fs::create_directory(at("sub"));
    expectRefused(at("sub") / ".." / "." / "talk.mp4", kIsSource);
}

TEST_F(DestinationGuardsTest, theSourceIsRefusedByASymbolicLinkWhichStays) {
    fs::create_symlink(source, at("link.mp4"));
    expectRefused(at("link.mp4"), kIsSource);
    EXPECT_TRUE(fs::is_symlink(at("link.mp4")));
}

TEST_F(DestinationGuardsTest, theSourceIsRefusedThroughALinkedFolder) {
    fs::create_directory_symlink(folder.path(), at("elsewhere"));
    expectRefused(at("elsewhere") / "talk.mp4", kIsSource);
}

TEST_F(DestinationGuardsTest, theSourceIsRefusedByAHardLinkWhichStays) {
    fs::create_hard_link(source, at("twin.mp4"));
    expectRefused(at("twin.mp4"), kIsSource);
    EXPECT_EQ(fs::hard_link_count(source), 2U);
}

TEST_F(DestinationGuardsTest, theFileBehindALinkThatWasGivenAsSourceIsRefused) {
    fs::create_symlink(source, at("given.mp4"));
    EXPECT_THROW(clearDestination(source, at("given.mp4")), ExportError);
    EXPECT_EQ(contentOf(source), "the recording");
}

TEST_F(DestinationGuardsTest, aFolderIsRefusedFullOrEmptyOrLinked) {
    const std::string reason = " is a folder. Choose a file name for the video.";
    fs::create_directory(at("empty"));
    expectRefused(at("empty"), reason);
    fs::create_directory_symlink(at("empty"), at("linked"));
    expectRefused(at("linked"), reason);
    expectRefused(folder.path(), reason);
    EXPECT_TRUE(fs::is_directory(at("empty")));
    EXPECT_TRUE(fs::is_symlink(at("linked")));
}

TEST_F(DestinationGuardsTest, aPipeOrDeviceIsRefused) {
    const std::string reason = " is not a file. Choose a file name for the video.";
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    expectRefused(at("pipe"), reason);
    fs::create_symlink("/dev/null", at("nowhere"));
    expectRefused(at("nowhere"), reason);
    EXPECT_TRUE(fs::exists(at("pipe")));
    EXPECT_TRUE(fs::is_symlink(at("nowhere")));
}

TEST_F(DestinationGuardsTest, ofALinkToAnotherFileOnlyTheLinkGoes) {
    const fs::path other = folder.file("other.mp4", "another reel");
    fs::create_symlink(other, at("reel.mp4"));
    clearDestination(at("reel.mp4"), source);
    EXPECT_FALSE(fs::is_symlink(at("reel.mp4")));
    EXPECT_EQ(contentOf(other), "another reel");
}

TEST_F(DestinationGuardsTest, aLinkThatLeadsNowhereIsRemoved) {
    fs::create_symlink(at("gone"), at("reel.mp4"));
    clearDestination(at("reel.mp4"), source);
    EXPECT_FALSE(fs::is_symlink(at("reel.mp4")));
}

TEST_F(DestinationGuardsTest, aSourceThatDoesNotExistDoesNotKeepTheOldFile) {
    const fs::path old = folder.file("reel.mp4", "old");
    clearDestination(old, at("missing.mp4"));
    EXPECT_FALSE(fs::exists(old));
}

TEST_F(DestinationGuardsTest, aSourceThatCannotBeLookedAtKeepsTheOldFile) {
    fs::create_symlink(at("loop.mp4"), at("loop.mp4"));
    const fs::path old = folder.file("reel.mp4", "old");
    EXPECT_NO_THROW(clearDestination(old, at("loop.mp4")));
    EXPECT_EQ(contentOf(old), "old");
}

}  // namespace
}  // namespace korvane
