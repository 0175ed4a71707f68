#include "platform/ffmpeg/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>

#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

constexpr mode_t kOrdinaryFile = 0666;  // less the person's umask

}  // namespace

OutputFile::OutputFile(std::filesystem::path destination) : destination_(std::move(destination)) {
    std::error_code ignored;
    if (std::filesystem::is_directory(destination_, ignored))
        throw MediaError(destination_.string() + " is a folder; give the name of a file in it.");
    std::filesystem::path folder = destination_.parent_path();
    if (folder.empty())
        folder = ".";
#ifdef O_TMPFILE
    descriptor_ = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kOrdinaryFile);
    if (descriptor_ >= 0) {
        workingPath_ = "/proc/self/fd/" + std::to_string(descriptor_);
        if (::access(workingPath_.c_str(), R_OK | W_OK) == 0)
            return;
        ::close(descriptor_);  // no /proc here
        descriptor_ = -1;
    }
#endif
    temporary_ = hiddenSibling();
    descriptor_ = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kOrdinaryFile);
    if (descriptor_ < 0) {
        const int systemError = errno;
        temporary_.clear();
        fail(systemError);
    }
    workingPath_ = temporary_.string();
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
    if (!temporary_.empty())
        ::unlink(temporary_.c_str());
}

std::filesystem::path OutputFile::hiddenSibling() const {
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    // Not made of the destination's name, which may be as long as a name can be.
    const std::string name = ".korvane-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) +
                             "-" + std::to_string(random()) + ".part";
    return destination_.parent_path() / name;
}

void OutputFile::fail(int systemError) const {
    const std::string name = destination_.string();
    if (systemError == ENOENT || systemError == ENOTDIR)
        throw MediaError("The folder of " + name + " does not exist.");
    if (systemError == EACCES || systemError == EPERM || systemError == EROFS)
        throw MediaError("No permission to write " + name + ".");
    if (systemError == ENOSPC || systemError == EDQUOT)
        throw MediaError("Writing " + name + ": the disk is full. Free some space and try again.");
    throw MediaError("Writing " + name + ": " + std::strerror(systemError) + ".");
}

void OutputFile::publish() {
    if (temporary_.empty()) {
        // A name can only be given where there is none; so give a hidden one, then move it over the
        // destination.
        const std::filesystem::path sibling = hiddenSibling();
        if (::linkat(AT_FDCWD, workingPath_.c_str(), AT_FDCWD, sibling.c_str(), AT_SYMLINK_FOLLOW) != 0)
            fail(errno);
        temporary_ = sibling;
    }
    if (::rename(temporary_.c_str(), destination_.c_str()) != 0)
        fail(errno);
    temporary_.clear();
}

}  // namespace korvane
