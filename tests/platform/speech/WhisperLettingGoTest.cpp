// The engine and workers that take long to end.
#include <sys/ptrace.h>
#include <unistd.h>

#include <atomic>
#include <memory>

#include "tests/platform/speech/WhisperEngineFixture.h"

namespace korvane {
namespace {

using WhisperLettingGo = WhisperEngineTest;

/// Keeps the kernel from letting go of a process that has ended, as a driver or a file of the network may.
class Held {
  public:
    explicit Held(pid_t process) {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        holder_ = fork();
        if (holder_ == 0) {
            const char done = ptrace(PTRACE_SEIZE, process, nullptr, nullptr) == 0 ? 'y' : 'n';
            if (write(ends[1], &done, 1) != 1)
                _exit(1);
            for (;;)
                pause();
        }
        char done = 'n';
        works = read(ends[0], &done, 1) == 1 && done == 'y';
        close(ends[0]);
        close(ends[1]);
    }
    ~Held() {
        kill(holder_, SIGKILL);
        waitpid(holder_, nullptr, 0);
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    bool works = false;

  private:
    pid_t holder_ = -1;
};

TEST_F(WhisperLettingGo, aWorkerThatTheKernelDoesNotLetGoOfIsNotWaitedForForEver) {
    pid_t process = 0;
    {
        auto whisper = engine(settings(""));
        EXPECT_EQ(recognize(whisper).words, oneTwo);
        process = whisper.keeper().processId();
        const Held held(process);
        ASSERT_TRUE(held.works);
        folder.file("ggml-fake.bin", "another model");
        const auto start = Clock::now();
        EXPECT_EQ(recognize(whisper).words, oneTwo);
        EXPECT_GT(Clock::now() - start, 1s);
        EXPECT_LT(Clock::now() - start, 8s);
        EXPECT_NE(whisper.keeper().processId(), process);
    }
    EXPECT_TRUE(comesTrue([&] { return waitpid(process, nullptr, WNOHANG) == process; }));
}

TEST_F(WhisperLettingGo, whoComesWhileAnUnusedWorkerIsLetGoWaitsUntilItsMemoryIsFree) {
    std::atomic<bool> isShort = false;
    auto with = settings("");
    with.look = 5ms;
    with.memoryIsShort = [&] { return isShort.load(); };
    auto whisper = engine(with);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    const auto process = whisper.keeper().processId();
    auto held = std::make_unique<Held>(process);
    ASSERT_TRUE(held->works);
    isShort = true;
    ASSERT_TRUE(comesTrue([&] { return whisper.keeper().processId() == 0; }));
    isShort = false;
    auto coming = std::async(std::launch::async, [&] { return recognize(whisper); });
    EXPECT_EQ(coming.wait_for(500ms), std::future_status::timeout);
    EXPECT_EQ(whisper.keeper().processId(), 0);
    held.reset();
    EXPECT_EQ(coming.get().words, oneTwo);
    EXPECT_TRUE(comesTrue([&] { return !isAlive(process); }));
}

}  // namespace
}  // namespace korvane
