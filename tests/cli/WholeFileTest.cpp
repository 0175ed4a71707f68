#include "cli/WholeFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "cli/Failure.h"
#include "platform/tasks/Cancellation.h"

using namespace korvane;
using namespace korvane::cli;
namespace fs = std::filesystem;

namespace {

class WholeFile : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "korvane-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { fs::remove_all(folder_); }
    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }
    fs::path folder_;
};

// Puts the reading end of a pipe in the place of standard input.
class PipedInput {
  public:
    PipedInput() : saved_(dup(STDIN_FILENO)) {
        EXPECT_EQ(pipe(ends_.data()), 0);
        dup2(ends_[0], STDIN_FILENO);
        close(ends_[0]);
    }
    ~PipedInput() {
        closeWriter();
        dup2(saved_, STDIN_FILENO);
        close(saved_);
    }
    void write(std::string_view text) {
        EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void closeWriter() {
        if (ends_[1] >= 0)
            close(ends_[1]);
        ends_[1] = -1;
    }

  private:
    int saved_;
    std::array<int, 2> ends_{-1, -1};
};

}  // namespace

TEST_F(WholeFile, whatIsWrittenIsReadAgain) {
    const std::string content(300'000, 'x');
    writeWholeFile(folder_ / "f", content);
    EXPECT_EQ(readWholeFile(folder_ / "f", 1 << 20, {}), content);
    EXPECT_EQ(entries(), 1u);
}

TEST_F(WholeFile, anExistingFileIsReplacedAndTheModeIsTheUsualOne) {
    std::ofstream(folder_ / "f") << "old";
    const mode_t before = umask(022);
    writeWholeFile(folder_ / "f", "new");
    umask(before);
    EXPECT_EQ(readWholeFile(folder_ / "f", 100, {}), "new");
    struct stat info {};
    ASSERT_EQ(stat((folder_ / "f").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
}

TEST_F(WholeFile, aFailedWriteLeavesTheOldFileAndNothingElse) {
    std::ofstream(folder_ / "f") << "old";
    rlimit previous{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &previous), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, previous.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_THROW(writeWholeFile(folder_ / "f", std::string(100'000, 'x')), Failure);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &previous), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(readWholeFile(folder_ / "f", 100, {}), "old");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(WholeFile, whatCanNotBeReadOrWrittenIsSaid) {
    EXPECT_THROW(readWholeFile(folder_ / "no", 100, {}), Failure);
    EXPECT_THROW(readWholeFile(folder_, 100, {}), Failure);
    EXPECT_THROW(writeWholeFile(folder_ / "no" / "f", "x"), Failure);
}

TEST_F(WholeFile, aFileBeyondTheLimitIsRefused) {
    writeWholeFile(folder_ / "f", std::string(1000, 'x'));
    EXPECT_THROW(readWholeFile(folder_ / "f", 999, {}), Failure);
    EXPECT_EQ(readWholeFile(folder_ / "f", 1000, {}).size(), 1000u);
}

TEST_F(WholeFile, standardInputIsReadToItsEnd) {
    PipedInput input;
    std::thread writer([&] {
        input.write("first ");
        input.write("second");
        input.closeWriter();
    });
    EXPECT_EQ(readWholeFile("-", 100, {}), "first second");
    writer.join();
}

TEST_F(WholeFile, aStopEndsTheWaitForStandardInput) {
    PipedInput input;
    std::jthread reader(
        [&](const std::stop_token& stop) { EXPECT_THROW(readWholeFile("-", 100, stop), CancellationError); });
    reader.request_stop();
}
