#include "platform/ffmpeg/ErrorTranslation.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <array>
#include <mutex>
#include <new>
#include <system_error>

#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {

std::string libraryText(int code) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    if (av_strerror(code, text.data(), text.size()) < 0)
        return "error " + std::to_string(code);
    return text.data();
}

void throwMediaError(int code, const std::string& doing, const std::filesystem::path& file) {
    if (code == AVERROR_EXIT)
        throw CancellationError();
    if (code == AVERROR(ENOMEM))
        throw std::bad_alloc();
    if (code == AVERROR(ENOSPC))
        throw MediaError(doing + " " + file.string() + ": the disk is full. Free some space and try again.");
    throw MediaError(doing + " " + file.string() + ": " + libraryText(code) + ".");
}

void throwOpenError(int code, const std::filesystem::path& file) {
    if (code == AVERROR_EXIT)
        throw CancellationError();
    if (code == AVERROR(ENOMEM))
        throw std::bad_alloc();
    std::error_code ignored;
    const std::string name = file.string();
    if (code == AVERROR(ENOENT))
        throw MediaError("There is no file " + name + ".");
    if (code == AVERROR(EACCES) || code == AVERROR(EPERM))
        throw MediaError("No permission to read " + name + ".");
    if (std::filesystem::is_directory(file, ignored))
        throw MediaError(name + " is a folder, not a video file.");
    if (std::filesystem::is_regular_file(file, ignored) && std::filesystem::file_size(file, ignored) == 0)
        throw MediaError(name + " is empty.");
    if (code == AVERROR_INVALIDDATA || code == AVERROR_EOF || code == AVERROR(EINVAL))
        throw MediaError(name + " can't be read as a video: it is damaged, incomplete, or not a video file.");
    throw MediaError("Opening " + name + ": " + libraryText(code) + ".");
}

void silenceLibraryLog() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

}  // namespace korvane
