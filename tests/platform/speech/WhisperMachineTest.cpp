// What the engine asks of the machine: cores, memory, where its worker lies.
#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

#include "platform/speech/whisper/MemoryPressure.h"
#include "platform/speech/whisper/PhysicalCores.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/speech/whisper/worker/MemoryWords.h"
#include "platform/speech/whisper/worker/Rest.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

/// What a kernel would say, in a folder: of the machine, and of control groups.
class MemoryPressureTest : public testing::Test {
  protected:
    bool isShort() const { return memoryIsShort(folder.path() / "proc", folder.path() / "groups"); }
    void machine(const std::string& name, const std::string& text) const {
        folder.file("proc/" + name, text);
    }
    void group(const std::string& name, const std::string& text) const {
        folder.file("groups/" + name, text + '\n');
    }
    const TemporaryFolder folder;
};

TEST_F(MemoryPressureTest, memoryIsShortWhenLessThanATenthIsLeft) {
    machine("meminfo", "MemTotal:       16000 kB\nMemFree: 1 kB\nMemAvailable:    1700 kB\n");
    EXPECT_FALSE(isShort());
    machine("meminfo", "MemTotal:       16000 kB\nMemFree: 1 kB\nMemAvailable:    1500 kB\n");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, memoryIsShortWhenProgramsWaitForIt) {
    machine("pressure/memory", "some avg10=0.50 avg60=9.00 avg300=0.00 total=1\nfull avg10=9.00 avg60=0\n");
    EXPECT_FALSE(isShort());
    machine("pressure/memory", "some avg10=12.25 avg60=0.00 avg300=0.00 total=1\nfull avg10=0.00 avg60=0\n");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, whatCannotBeReadSaysNothing) {
    EXPECT_FALSE(isShort());
    machine("meminfo", "MemTotal: many\nMemAvailable: 1 kB\n");
    EXPECT_FALSE(isShort());
    machine("self/cgroup", "0::/a\n");
    group("a/memory.max", "much");
    group("a/memory.current", "1000");
    EXPECT_FALSE(isShort());
}

TEST_F(MemoryPressureTest, aContainersLimitCountsWhateverTheMachineHas) {
    machine("meminfo", "MemTotal: 16000 kB\nMemAvailable: 15000 kB\n");
    machine("self/cgroup", "0::/\n");
    group("memory.max", "2000000000");
    group("memory.current", "1700000000");
    EXPECT_FALSE(isShort());
    group("memory.current", "1900000000");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, filesThatWereReadAreGivenUpFirst) {
    machine("self/cgroup", "0::/\n");
    group("memory.max", "2000000000");
    group("memory.current", "1999000000");
    group("memory.stat", "anon 500000000\nfile 1499000000\ninactive_anon 1\ninactive_file 1400000000");
    EXPECT_FALSE(isShort());
    group("memory.stat", "anon 1900000000\nfile 99000000\ninactive_anon 1\ninactive_file 50000000");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, theLimitAtWhichProgramsAreSlowedDownCountsToo) {
    machine("self/cgroup", "0::/app.slice/korvane.scope\n");
    group("app.slice/korvane.scope/memory.max", "max");
    group("app.slice/korvane.scope/memory.high", "1000000000");
    group("app.slice/korvane.scope/memory.current", "500000000");
    EXPECT_FALSE(isShort());
    group("app.slice/korvane.scope/memory.current", "950000000");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, everyGroupAboveTheOwnCounts) {
    machine("self/cgroup", "4:memory:/elsewhere\n0::/a/b/c\n");
    for (const char* above : {"a/b/c/", "a/b/", "a/", ""}) {
        const std::string prefix = above;
        group(prefix + "memory.max", "1000000");
        group(prefix + "memory.current", "980000");
        EXPECT_TRUE(isShort()) << prefix;
        group(prefix + "memory.current", "1000");
        EXPECT_FALSE(isShort()) << prefix;
    }
    group("elsewhere/memory.max", "1000000");
    group("elsewhere/memory.current", "1000000");
    EXPECT_FALSE(isShort());
}

TEST_F(MemoryPressureTest, memoryIsShortWhenProgramsOfTheGroupWaitForIt) {
    machine("self/cgroup", "0::/a\n");
    group("a/memory.pressure", "some avg10=4.00 avg60=0.00 avg300=0.00 total=1");
    EXPECT_FALSE(isShort());
    group("a/memory.pressure", "some avg10=6.00 avg60=0.00 avg300=0.00 total=1");
    EXPECT_TRUE(isShort());
}

TEST_F(MemoryPressureTest, aGroupThatTheContainerCannotSeeIsLookedForNowhereElse) {
    // As a process sees itself that was moved out of what its container calls the root.
    machine("self/cgroup", "0::/../outside\n");
    folder.file("outside/memory.max", "1000\n");
    folder.file("outside/memory.current", "1000\n");
    EXPECT_FALSE(isShort());
    group("memory.max", "1000");
    group("memory.current", "1000");
    EXPECT_TRUE(isShort());
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

TEST(PhysicalCores, notMoreThreadsWorkThanAContainerGrants) {
    const TemporaryFolder cpus;  // each counts for itself
    const int all = physicalCores(cpus.path());
    EXPECT_EQ(physicalCores(cpus.path(), 0.3), 1);
    EXPECT_EQ(physicalCores(cpus.path(), 1.0), 1);
    EXPECT_EQ(physicalCores(cpus.path(), 1.5), std::min(all, 2));
    EXPECT_EQ(physicalCores(cpus.path(), 1000), all);
}

TEST(WhisperRest, whatCannotBeAlignedIsNeverLeftToTheLibraryAndHardlyMore) {
    for (std::int64_t length = 1; length <= 3000; ++length) {
        for (std::int64_t begin = 0; begin < length; ++begin) {
            const auto left = length - begin;
            const bool may = whisper::canBeAligned(100 * begin / length, length);
            ASSERT_TRUE(!may || left >= whisper::shortestAligned) << begin << " of " << length;
            ASSERT_TRUE(may || left < whisper::shortestAligned + length / 100 + 1)
                << begin << " of " << length;
        }
    }
}

TEST(WhisperMemoryWords, whatTheLibrarySaysWhenMemoryRanOutIsTold) {
    using whisper::speaksOfMemory;
    EXPECT_TRUE(speaksOfMemory("ggml_aligned_malloc: insufficient memory (attempted to allocate 6.00 MB)\n"));
    EXPECT_TRUE(speaksOfMemory("alloc_tensor_range: failed to allocate CPU buffer of size 104857600\n"));
    EXPECT_TRUE(speaksOfMemory("failed to load libggml-cpu.so: failed to map segment from shared object\n"));
    EXPECT_TRUE(speaksOfMemory("ggml_vulkan: Device memory allocation of size 1073741824 failed.\n"));
    EXPECT_FALSE(
        speaksOfMemory("ggml_new_object: not enough space in the context's memory pool (needed 2)\n"));
    EXPECT_FALSE(speaksOfMemory("whisper_model_load: tensor 'x' has wrong size in model file\n"));
    EXPECT_FALSE(speaksOfMemory(""));
}

TEST(WhisperMemoryWords, anAssertionThatMemoryIsThereIsTold) {
    EXPECT_TRUE(whisper::assertsMemory("ggml.c:1655: GGML_ASSERT(ctx->mem_buffer != NULL) failed"));
    EXPECT_TRUE(whisper::assertsMemory("ggml-alloc.c:1: GGML_ASSERT(galloc->hash_values != NULL) failed"));
    EXPECT_FALSE(whisper::assertsMemory("ggml.c:1: GGML_ASSERT(a->ne[0] == b->ne[0]) failed"));
    EXPECT_FALSE(
        whisper::assertsMemory("ggml.c:1: GGML_ASSERT(src->data && \"graph must be allocated\") failed"));
}

TEST(WhisperMemoryWords, aThreadThatCannotBeHadLacksMemory) {
    using std::make_error_code;
    EXPECT_TRUE(whisper::meansNoMemory(std::bad_alloc()));
    EXPECT_TRUE(whisper::meansNoMemory(
        std::system_error(make_error_code(std::errc::resource_unavailable_try_again))));
    EXPECT_FALSE(whisper::meansNoMemory(std::system_error(make_error_code(std::errc::permission_denied))));
    EXPECT_FALSE(whisper::meansNoMemory(std::runtime_error("memory")));
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

TEST_F(WhisperProgramTest, aWorkerOnItsOwnLoaderIsSparedWhatThisSystemPreloads) {
    const auto clears = [](const std::vector<std::string>& command, const std::string& entry) {
        const auto all = whisperEnvironment(command);
        return std::find(all.begin(), all.end(), entry) != all.end();
    };
    for (const char* entry : {"LD_PRELOAD=", "LD_LIBRARY_PATH=", "LD_AUDIT="}) {
        EXPECT_TRUE(clears({"ld-linux.so.2", "--library-path", "there", "worker"}, entry)) << entry;
        // Linked to the system's library it may need them as the program does.
        EXPECT_FALSE(clears({"worker"}, entry)) << entry;
    }
}

TEST_F(WhisperProgramTest, theGraphicsCardIsUsedUnlessTheEnvironmentForbidsIt) {
    unsetenv("KORVANE_WHISPER_GPU");
    EXPECT_TRUE(whisperMayUseCard());
    setenv("KORVANE_WHISPER_GPU", "0", 1);
    EXPECT_FALSE(whisperMayUseCard());
    setenv("KORVANE_WHISPER_GPU", "1", 1);
    EXPECT_TRUE(whisperMayUseCard());
    unsetenv("KORVANE_WHISPER_GPU");
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
