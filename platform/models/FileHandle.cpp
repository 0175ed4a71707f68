#include "platform/models/FileHandle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/models/ModelError.h"
#include "platform/models/ModelTexts.h"

namespace korvane {
namespace {

// The disk is never filled to its last block: other programs run too.
constexpr std::uint64_t spareBytes = 16 << 20;

std::string quoted(const std::filesystem::path& path) {
    return "\"" + path.string() + "\"";
}

bool meansFull(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

}  // namespace

std::string systemReason(int error) {
    return std::generic_category().message(error);
}

FileHandle::~FileHandle() {
    if (number_ >= 0)
        ::close(number_);
}

std::uint64_t FileHandle::regularFileBytes(const std::filesystem::path& file) const {
    struct stat info {};
    if (::fstat(number_, &info) != 0)
        throw ModelError(quoted(file) + " can't be read: " + systemReason(errno) + ".");
    if (S_ISDIR(info.st_mode))
        throw ModelError(quoted(file) + " is a folder, not a model file.");
    if (!S_ISREG(info.st_mode))
        throw ModelError(quoted(file) + " is not a regular file.");
    return static_cast<std::uint64_t>(info.st_size);
}

std::size_t FileHandle::readAt(void* bytes, std::size_t count, std::uint64_t position,
                               const std::filesystem::path& file) const {
    for (;;) {
        const auto got = ::pread(number_, bytes, count, static_cast<off_t>(position));
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno != EINTR)
            throw ModelError(quoted(file) + " can't be read: " + systemReason(errno) + ".");
    }
}

void FileHandle::writeAll(const void* bytes, std::size_t count, const std::filesystem::path& file) const {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const auto done = ::write(number_, next, count);
        if (done < 0 && errno == EINTR)
            continue;
        if (done < 0 && meansFull(errno))
            throw FullDiskError("The disk is full: there is no room for the rest of the model in " +
                                quoted(file.parent_path()) + ".");
        if (done < 0)
            throw ModelError(quoted(file) + " can't be written: " + systemReason(errno) + ".");
        next += done;
        count -= static_cast<std::size_t>(done);
    }
}

FileHandle openForReading(const std::filesystem::path& file) {
    // A pipe must not hold the program up before it is found to be none of our files.
    FileHandle handle(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (handle)
        return handle;
    if (errno == ENOENT || errno == ENOTDIR)
        throw ModelError("There is no file " + quoted(file) + ".");
    throw ModelError(quoted(file) + " can't be read: " + systemReason(errno) + ".");
}

void makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder))
        throw ModelError("The folder " + quoted(folder) + " for models can't be made: " +
                         (error ? systemReason(error.value()) : systemReason(ENOTDIR)) + ".");
}

void requireRoom(const std::filesystem::path& folder, std::uint64_t bytes) {
    struct statvfs info {};
    if (::statvfs(folder.c_str(), &info) != 0)
        return;  // writing will tell
    const auto free = static_cast<std::uint64_t>(info.f_bavail) * info.f_frsize;
    if (free >= bytes + spareBytes)
        return;
    throw ModelError("There is not enough room in " + quoted(folder) + ": " + byteText(bytes) +
                     " are needed, and " + byteText(free) + " are free.");
}

void settleNames(const std::filesystem::path& folder) {
    const FileHandle handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle)
        ::fsync(handle.get());
}

}  // namespace korvane
