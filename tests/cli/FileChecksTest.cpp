#include "cli/FileChecks.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "cli/Failure.h"

using namespace korvane::cli;
namespace fs = std::filesystem;

namespace {

class FileChecks : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "korvane-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { fs::remove_all(folder_); }

    fs::path file(const std::string& name, const std::string& content = "content") const {
        std::ofstream(folder_ / name) << content;
        return folder_ / name;
    }
    std::string readable(const fs::path& path) const {
        return refusal([&] { requireReadableFile(path); });
    }
    std::string writable(const fs::path& path, const std::vector<fs::path>& inputs = {}) const {
        return refusal([&] { requireWritableDestination(path, inputs); });
    }
    template <class Check>
    std::string refusal(Check check) const {
        try {
            check();
        } catch (const Failure& failure) {
            std::string text = failure.what();
            for (auto at = text.find(folder_.string()); at != std::string::npos;
                 at = text.find(folder_.string()))
                text.replace(at, folder_.string().size(), "T");
            return text;
        }
        return "fine";
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    fs::path folder_;
};

}  // namespace

TEST_F(FileChecks, aFileWithContentIsReadable) {
    EXPECT_EQ(readable(file("v.mp4")), "fine");
}

TEST_F(FileChecks, whatCanNotBeASourceIsNamed) {
    EXPECT_EQ(readable(folder_ / "no.mp4"), "There is no file \"T/no.mp4\".");
    EXPECT_EQ(readable(file("v.mp4") / "under"), "There is no file \"T/v.mp4/under\".");
    EXPECT_EQ(readable(folder_), "\"T\" is a folder, not a file.");
    EXPECT_EQ(readable(file("empty.mp4", "")), "\"T/empty.mp4\" is empty.");
    EXPECT_EQ(readable("/dev/null"), "\"/dev/null\" is not a regular file.");
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(readable(folder_ / "pipe"), "\"T/pipe\" is not a regular file.");
    fs::create_symlink("nowhere", folder_ / "dangling");
    EXPECT_EQ(readable(folder_ / "dangling"), "There is no file \"T/dangling\".");
    fs::create_symlink("loop", folder_ / "loop");
    EXPECT_EQ(readable(folder_ / "loop"), "\"T/loop\" can't be read: Too many levels of symbolic links.");
}

TEST_F(FileChecks, aFreeOrTakenNameInAWritableFolderWillDo) {
    EXPECT_EQ(writable(folder_ / "new.mp4"), "fine");
    EXPECT_EQ(writable(file("old.mp4")), "fine");
    EXPECT_EQ(entries(), 1u) << "a trial left something behind";
}

TEST_F(FileChecks, whatCanNotBeADestinationIsNamed) {
    EXPECT_EQ(writable(folder_), "\"T\" is a folder; give the name of a file to write.");
    EXPECT_EQ(writable(folder_ / ""), "\"T/\" is a folder; give the name of a file to write.");
    EXPECT_EQ(writable(folder_ / "no" / "o.mp4"), "The folder \"T/no\" for \"o.mp4\" does not exist.");
    EXPECT_EQ(writable(file("f") / "o.mp4"), "\"T/f\" is not a folder, so nothing can be written in it.");
    EXPECT_EQ(writable("/dev/null"), "\"/dev/null\" is not a regular file, so it can't be replaced.");
    EXPECT_TRUE(writable("/proc/o.mp4").starts_with("Nothing can be written in the folder \"/proc\": "));
}

TEST_F(FileChecks, anInputIsNeverADestinationByWhateverName) {
    const auto source = file("v.mp4");
    fs::create_symlink("v.mp4", folder_ / "soft.mp4");
    fs::create_hard_link(source, folder_ / "hard.mp4");
    fs::create_directory(folder_ / "sub");
    const std::vector<fs::path> inputs{file("words.json"), source};
    for (const fs::path& name : {fs::path("v.mp4"), fs::path("soft.mp4"), fs::path("hard.mp4"),
                                 fs::path("sub/../v.mp4"), fs::path("words.json")})
        EXPECT_NE(writable(folder_ / name, inputs).find(", which would be lost; choose another output."),
                  std::string::npos)
            << name;
    EXPECT_EQ(writable(folder_ / "other.mp4", inputs), "fine");
}
