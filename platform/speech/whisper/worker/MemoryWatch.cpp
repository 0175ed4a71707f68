#include "platform/speech/whisper/worker/MemoryWatch.h"

#include <ggml.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>

#include "platform/speech/whisper/worker/MemoryWords.h"

namespace korvane::whisper {
namespace {

// A process has one log, one handler of a signal and one end.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<bool> hasRunOut = false;
int programsEnd = -1;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)
static_assert(std::atomic<bool>::is_always_lock_free);  // as a signal's handler looks at it

/// Made of what a signal's handler may do.
[[noreturn]] void endForMemory() {
    static constexpr std::string_view lastWords = "failed memory 27\nThere is not enough memory.";
    [[maybe_unused]] const auto written = ::write(programsEnd, lastWords.data(), lastWords.size());
    _exit(1);
}

/// Without memory, the signal goes its way: the second time it isn't caught any more.
void onCrash(int) {
    if (hasRunOut)
        endForMemory();
}

void onAssertion(const char* assertion) {
    if (assertsMemory(assertion))
        hasRunOut = true;
}

void onRefusedNew() {
    hasRunOut = true;
    throw std::bad_alloc();
}

[[noreturn]] void onUncaught() {
    try {
        if (const auto error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const std::exception& error) {
        if (meansNoMemory(error))
            hasRunOut = true;
    } catch (...) {
    }
    std::abort();
}

}  // namespace

void watchMemory(int output) {
    programsEnd = output;
    std::set_new_handler(onRefusedNew);
    std::set_terminate(onUncaught);
    ggml_set_abort_callback(onAssertion);
    // Its threads' library leaves in order when it can't have a thread; nothing else here does.
    std::atexit([] { endForMemory(); });
    struct sigaction action {};
    action.sa_handler = onCrash;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int crash : std::array{SIGABRT, SIGSEGV, SIGBUS})
        sigaction(crash, &action, nullptr);
}

void hearComplaint(std::string_view complaint) {
    if (speaksOfMemory(complaint))
        hasRunOut = true;
}

void forgetComplaints() {
    hasRunOut = false;
}

bool hasMemoryRunOut() {
    return hasRunOut;
}

}  // namespace korvane::whisper
