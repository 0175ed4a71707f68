#include "platform/speech/whisper/WhisperProgram.h"

#include <unistd.h>

#include <cstdlib>
#include <system_error>

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* name = "korvane-whisper";

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
    return {loader.string(), "--library-path", library.string(),
            worker.string(), "--backends",     library.string()};
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

}  // namespace korvane
