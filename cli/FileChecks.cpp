#include "cli/FileChecks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "cli/Descriptor.h"
#include "cli/Failure.h"

namespace korvane::cli {
namespace {

std::string quoted(const std::filesystem::path& path) {
    return "\"" + path.string() + "\"";
}

std::string reason(int error) {
    return std::generic_category().message(error);
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
    const auto folder = file.parent_path();
    return folder.empty() ? std::filesystem::path(".") : folder;
}

void requireFolder(const std::filesystem::path& folder, const std::filesystem::path& destination) {
    struct stat info {};
    if (stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        return;
    const int error = errno;
    if (error == ENOENT)
        throw Failure("The folder " + quoted(folder) + " for " + quoted(destination.filename()) +
                      " does not exist.");
    if (error == ENOTDIR || S_ISREG(info.st_mode))
        throw Failure(quoted(folder) + " is not a folder, so nothing can be written in it.");
    throw Failure("The folder " + quoted(folder) + " can't be reached: " + reason(error) + ".");
}

// Permission bits don't tell about read-only or full file systems and quotas; a trial does. It loses its name
// at once, so that nothing stays behind whatever happens.
void tryToWriteIn(const std::filesystem::path& folder) {
    std::string pattern = (folder / ".korvane-XXXXXX").string();
    const Descriptor file(mkostemp(pattern.data(), O_CLOEXEC));
    int error = errno;
    if (file.get() >= 0) {
        unlink(pattern.c_str());
        const std::array<char, 4096> block{};
        if (write(file.get(), block.data(), block.size()) == static_cast<ssize_t>(block.size()))
            return;
        error = errno;
    }
    throw Failure("Nothing can be written in the folder " + quoted(folder) + ": " + reason(error) + ".");
}

}  // namespace

void requireReadableFile(const std::filesystem::path& file) {
    struct stat info {};
    if (stat(file.c_str(), &info) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            throw Failure("There is no file " + quoted(file) + ".");
        throw Failure(quoted(file) + " can't be read: " + reason(errno) + ".");
    }
    if (S_ISDIR(info.st_mode))
        throw Failure(quoted(file) + " is a folder, not a file.");
    if (!S_ISREG(info.st_mode))
        throw Failure(quoted(file) + " is not a regular file.");
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.get() < 0)
        throw Failure(quoted(file) + " can't be read: " + reason(errno) + ".");
    if (info.st_size == 0)
        throw Failure(quoted(file) + " is empty.");
}

void requireWritableDestination(const std::filesystem::path& destination,
                                const std::vector<std::filesystem::path>& inputs) {
    struct stat info {};
    const bool exists = stat(destination.c_str(), &info) == 0;
    if ((exists && S_ISDIR(info.st_mode)) || destination.filename().empty())
        throw Failure(quoted(destination) + " is a folder; give the name of a file to write.");
    if (exists && !S_ISREG(info.st_mode))
        throw Failure(quoted(destination) + " is not a regular file, so it can't be replaced.");
    for (const auto& input : inputs) {
        std::error_code ignored;
        if (exists && std::filesystem::equivalent(destination, input, ignored))
            throw Failure(quoted(destination) + " is the same file as " + quoted(input) +
                          ", which would be lost; choose another output.");
    }
    const auto folder = folderOf(destination);
    requireFolder(folder, destination);
    tryToWriteIn(folder);
}

}  // namespace korvane::cli
