#include "platform/speech/pocketsphinx/LibraryGuard.h"

#include <sphinxbase/err.h>

#include <algorithm>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace korvane {
namespace {

/// Per thread, because the libraries call back on the thread that called them.
thread_local std::jmp_buf* wayOut = nullptr;
thread_local char complaint[512] = "";

/// Leaves by a jump, not by an exception: all frames between here and the guard are the libraries' own C.
void onMessage(void*, err_lvl_t level, const char* format, ...) {
    if (level < ERR_ERROR)
        return;
    if (complaint[0] == '\0') {
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(complaint, sizeof complaint, format, arguments);
        va_end(arguments);
    }
    if (level == ERR_FATAL && wayOut)
        std::longjmp(*wayOut, 1);
}

}  // namespace

void takeOverLibraryErrors() {
    static std::once_flag once;
    std::call_once(once, [] {
        err_set_logfp(nullptr);
        err_set_callback(onMessage, nullptr);
    });
}

bool guardedLibraryCall(void (*call)(void*), void* argument) {
    std::jmp_buf here;
    complaint[0] = '\0';
    if (setjmp(here) != 0) {
        wayOut = nullptr;
        return false;
    }
    wayOut = &here;
    call(argument);
    wayOut = nullptr;
    return true;
}

std::string libraryComplaint() {
    // ERROR: "file.c", line 123: what is wrong
    const char* place = std::strstr(complaint, "\", line ");
    const char* text = place ? std::strstr(place, ": ") : nullptr;
    std::string said = text ? text + 2 : complaint;
    // Some of its lines are broken in the middle; the sentence goes on one.
    std::replace(said.begin(), said.end(), '\n', ' ');
    while (!said.empty() && (said.back() == '.' || said.back() == ' '))
        said.pop_back();
    return said;
}

}  // namespace korvane
