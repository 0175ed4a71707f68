#include "platform/process/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <langinfo.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

using namespace korvane;

namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "(none)" : value;
}

// Each in a process of its own, which what is prepared belongs to.
[[noreturn]] void leave(bool asExpected) {
    _exit(asExpected ? 0 : 1);
}

class PreparedProcess : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(PreparedProcess, missingStandardStreamsLeadNowhere) {
    EXPECT_EXIT(
        {
            close(0);
            close(1);
            prepareProcess();
            leave(open("/dev/null", O_RDONLY) > 2 && write(1, "x", 1) == 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(PreparedProcess, aClosedPipeIsAnErrorInsteadOfASignal) {
    EXPECT_EXIT(
        {
            prepareProcess();
            int ends[2];
            const bool isPipe = pipe(ends) == 0;
            close(ends[0]);
            leave(isPipe && write(ends[1], "x", 1) == -1 && errno == EPIPE);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(PreparedProcess, textIsUtf8WhateverTheEnvironmentSays) {
    EXPECT_EXIT(
        {
            setenv("LC_ALL", "C", 1);
            prepareProcess();
            std::setlocale(LC_CTYPE, "");
            leave(std::string_view(nl_langinfo(CODESET)) == "UTF-8");
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(PreparedProcess, emptyNamesOfFoldersAreAsGoodAsNone) {
    EXPECT_EXIT(
        {
            setenv("TMPDIR", "", 1);
            setenv("HOME", "", 1);
            prepareProcess();
            leave(variable("TMPDIR") == "(none)" && variable("HOME").starts_with('/'));
        },
        testing::ExitedWithCode(0), "");
}

class LentFolder : public testing::Test {
  protected:
    void SetUp() override { unsetenv("XDG_RUNTIME_DIR"); }
    void TearDown() override {
        if (before_ == "(none)")
            unsetenv("XDG_RUNTIME_DIR");
        else
            setenv("XDG_RUNTIME_DIR", before_.c_str(), 1);
    }

  private:
    const std::string before_ = variable("XDG_RUNTIME_DIR");
};

TEST_F(LentFolder, isThePersonsAloneAndGoesWithWhatIsInIt) {
    std::string folder;
    {
        const BorrowedRuntimeFolder borrowed;
        folder = variable("XDG_RUNTIME_DIR");
        EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
        std::filesystem::create_directory(folder + "/something");
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(variable("XDG_RUNTIME_DIR"), "(none)");
}

TEST_F(LentFolder, canBeGivenBackBeforeItsTime) {
    const BorrowedRuntimeFolder borrowed;
    const auto folder = variable("XDG_RUNTIME_DIR");
    ASSERT_TRUE(std::filesystem::exists(folder));
    BorrowedRuntimeFolder::giveBack();
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(variable("XDG_RUNTIME_DIR"), "(none)");
    BorrowedRuntimeFolder::giveBack();
}

TEST_F(LentFolder, aSessionWithItsOwnKeepsIt) {
    setenv("XDG_RUNTIME_DIR", "/nowhere/session", 1);
    {
        const BorrowedRuntimeFolder borrowed;
        EXPECT_EQ(variable("XDG_RUNTIME_DIR"), "/nowhere/session");
        BorrowedRuntimeFolder::giveBack();
    }
    EXPECT_EQ(variable("XDG_RUNTIME_DIR"), "/nowhere/session");
}

}  // namespace
