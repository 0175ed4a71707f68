// What the engine asks of the machine: cores, memory, where its worker lies.
#include <gtest/gtest.h>
#include <sched.h>

#include <filesystem>

#include "platform/speech/whisper/MemoryPressure.h"
#include "platform/speech/whisper/PhysicalCores.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

TEST(MemoryPressure, memoryIsShortWhenLessThanATenthIsLeft) {
    const TemporaryFolder proc;
    proc.file("meminfo", "MemTotal:       16000 kB\nMemFree: 1 kB\nMemAvailable:    1700 kB\n");
    EXPECT_FALSE(memoryIsShort(proc.path()));
    proc.file("meminfo", "MemTotal:       16000 kB\nMemFree: 1 kB\nMemAvailable:    1500 kB\n");
    EXPECT_TRUE(memoryIsShort(proc.path()));
}

TEST(MemoryPressure, memoryIsShortWhenProgramsWaitForIt) {
    const TemporaryFolder proc;
    proc.file("pressure/memory", "some avg10=0.50 avg60=9.00 avg300=0.00 total=1\nfull avg10=9.00 avg60=0\n");
    EXPECT_FALSE(memoryIsShort(proc.path()));
    proc.file("pressure/memory",
              "some avg10=12.25 avg60=0.00 avg300=0.00 total=1\nfull avg10=0.00 avg60=0\n");
    EXPECT_TRUE(memoryIsShort(proc.path()));
}

TEST(MemoryPressure, whatCannotBeReadSaysNothing) {
    const TemporaryFolder proc;
    EXPECT_FALSE(memoryIsShort(proc.path()));
    proc.file("meminfo", "MemTotal: many\nMemAvailable: 1 kB\n");
    EXPECT_FALSE(memoryIsShort(proc.path()));
}

TEST(PhysicalCores, threadsOfOneCoreCountOnce) {
    const TemporaryFolder cpus;
    const int alone = physicalCores(cpus.path());
    EXPECT_GE(alone, 1);
    EXPECT_LE(alone, 16);
    cpu_set_t usable;
    ASSERT_EQ(sched_getaffinity(0, sizeof usable, &usable), 0);
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
        if (CPU_ISSET(cpu, &usable))
            cpus.file("cpu" + std::to_string(cpu) + "/topology/thread_siblings_list", "0-511\n");
    EXPECT_EQ(physicalCores(cpus.path()), 1);
}

class WhisperProgramTest : public testing::Test {
  protected:
    void program(const std::string& path) const {
        std::filesystem::permissions(folder.file(path, "#!"), std::filesystem::perms::owner_all);
    }
    const std::string at(const std::string& path) const { return (folder.path() / path).string(); }
    const TemporaryFolder folder;
};

TEST_F(WhisperProgramTest, anInstalledWorkerLiesInLibexec) {
    EXPECT_TRUE(whisperCommand(folder.path() / "bin").empty());
    folder.file("libexec/korvane/korvane-whisper", "not executable");
    EXPECT_TRUE(whisperCommand(folder.path() / "bin").empty());
    program("libexec/korvane/korvane-whisper");
    EXPECT_EQ(whisperCommand(folder.path() / "bin"),
              std::vector<std::string>{at("libexec/korvane/korvane-whisper")});
}

TEST_F(WhisperProgramTest, aWorkerThatBringsItsLibraryRunsOnItsOwnLoader) {
    program("libexec/korvane/korvane-whisper");
    program("libexec/korvane/whisper-library/ld-linux-test.so.2");
    const auto library = at("libexec/korvane/whisper-library");
    EXPECT_EQ(whisperCommand(folder.path() / "bin"),
              (std::vector<std::string>{library + "/ld-linux-test.so.2", "--library-path", library,
                                        at("libexec/korvane/korvane-whisper"), "--backends", library}));
}

TEST_F(WhisperProgramTest, theEnvironmentNamesAnother) {
    program("libexec/korvane/korvane-whisper");
    program("mine");
    setenv("KORVANE_WHISPER", at("mine").c_str(), 1);
    EXPECT_EQ(whisperCommand(folder.path() / "bin"), std::vector<std::string>{at("mine")});
    setenv("KORVANE_WHISPER", at("none").c_str(), 1);
    EXPECT_TRUE(whisperCommand(folder.path() / "bin").empty());
    unsetenv("KORVANE_WHISPER");
}

}  // namespace
}  // namespace korvane
