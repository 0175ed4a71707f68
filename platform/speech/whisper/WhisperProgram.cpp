#include "platform/speech/whisper/WhisperProgram.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* name = "korvane-whisper";
/// What only a loader of programs understands.
constexpr const char* libraryPath = "--library-path";

bool isProgram(const fs::path& file) {
    std::error_code ignored;
    return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

/// The private library's loader of programs, if there is one.
fs::path loaderIn(const fs::path& folder) {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder, none)) {
        if (entry.path().filename().string().starts_with("ld-linux"))
            return entry.path();
    }
    return {};
}

std::vector<std::string> commandOf(const fs::path& worker) {
    const auto library = worker.parent_path() / "whisper-library";
    const auto loader = loaderIn(library);
    if (loader.empty())
        return {worker.string()};
    return {loader.string(), libraryPath, library.string(), worker.string(), "--backends", library.string()};
}

}  // namespace

std::vector<std::string> whisperCommand(const fs::path& program) {
    if (const char* const named = std::getenv("KORVANE_WHISPER"); named && *named != '\0')
        return isProgram(named) ? commandOf(named) : std::vector<std::string>();
    for (const char* const place : {KORVANE_WHISPER_INSTALLED, "../platform/speech/whisper"}) {
        const auto worker = (program / place / name).lexically_normal();
        if (isProgram(worker))
            return commandOf(worker);
    }
    return {};
}

std::vector<std::string> whisperCommand() {
    std::error_code error;
    const auto self = fs::read_symlink("/proc/self/exe", error);
    return whisperCommand(error ? fs::path() : self.parent_path());
}

std::vector<std::string> whisperEnvironment(const std::vector<std::string>& command) {
    std::vector<std::string> all{
        "GGML_NO_BACKTRACE=1",  // else an abort starts a debugger
        // Threads that wait for one another sleep instead of turning in circles: on a machine that has other
        // work too, they turn while the one that they wait for can't run. Measured: five to ten times as fast
        // there.
        "OMP_WAIT_POLICY=passive",
    };
    // What this system preloads was built for its own C library.
    if (std::find(command.begin(), command.end(), libraryPath) != command.end())
        all.insert(all.end(), {"LD_PRELOAD=", "LD_AUDIT=", "LD_LIBRARY_PATH="});
    return all;
}

bool whisperMayUseCard() {
    const char* const wish = std::getenv("KORVANE_WHISPER_GPU");
    return !wish || std::string_view(wish) != "0";
}

}  // namespace korvane
