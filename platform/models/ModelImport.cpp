#include "platform/models/ModelImport.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>
#include <vector>

#include "platform/models/Digest.h"
#include "platform/models/FileHandle.h"
#include "platform/models/ModelError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* newcomerPrefix = ".adding-";

/// Removes what programs left that were killed while they copied: whoever still copies holds a lock.
void sweep(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (!entry->path().filename().string().starts_with(newcomerPrefix))
            continue;
        const FileHandle handle(::open(entry->path().c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        if (handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(entry->path().c_str());
    }
}

/// A hidden file in the folder of models, gone again unless it was given a name.
class Newcomer {
  public:
    explicit Newcomer(const fs::path& folder) {
        do {
            create(folder);
            ::flock(handle_.get(), LOCK_EX);
        } while (wasSwept());
    }
    ~Newcomer() {
        if (!name_.empty())
            ::unlink(name_.c_str());
    }
    Newcomer(const Newcomer&) = delete;
    Newcomer& operator=(const Newcomer&) = delete;

    const FileHandle& handle() const { return handle_; }
    fs::path path() const { return name_; }

    void moveTo(const fs::path& destination) {
        if (::fsync(handle_.get()) != 0 || std::rename(name_.c_str(), destination.c_str()) != 0)
            throw ModelError("\"" + destination.string() + "\" can't be written: " + systemReason(errno) +
                             ".");
        name_.clear();
    }

  private:
    /// As readable as what else the person writes, since a system's folder may be filled this way too: the
    /// kernel takes off what the person's mask says. The mask itself can't be asked for without changing it
    /// for a moment, in which another thread's file would be open to all.
    void create(const fs::path& folder) {
        std::random_device random;
        do {
            name_ = (folder / newcomerPrefix).string() + std::to_string(random());
            handle_ = FileHandle(::open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        } while (!handle_ && errno == EEXIST);
        if (handle_)
            return;
        const int reason = errno;
        name_.clear();
        throw ModelError("Nothing can be written in the folder \"" + folder.string() +
                         "\": " + systemReason(reason) + ".");
    }
    /// By another program, in the moment before it was locked.
    bool wasSwept() const {
        struct stat info {};
        return ::fstat(handle_.get(), &info) == 0 && info.st_nlink == 0;
    }

    std::string name_;
    FileHandle handle_;
};

/// Reads all of the file, and writes it to `copy` if there is one. \return its digest.
std::string digestWhileCopying(const FileHandle& source, const fs::path& file, const Newcomer* copy,
                               const std::stop_token& stop, const std::function<void(double)>& progress) {
    const auto total = source.regularFileBytes(file);
    std::vector<std::byte> buffer(1 << 20);
    Sha256 digest;
    for (std::uint64_t position = 0;;) {
        checkCancelled(stop);
        const auto count = source.readAt(buffer.data(), buffer.size(), position, file);
        if (count == 0)
            break;
        digest.add({buffer.data(), count});
        if (copy)
            copy->handle().writeAll(buffer.data(), count, copy->path());
        position += count;
        if (progress)
            progress(static_cast<double>(position) / static_cast<double>(std::max(total, position)));
    }
    return digest.finish();
}

/// The name a file gets when its digest is not known.
std::string ownName(const fs::path& file, const SpeechModelCatalogue& catalogue) {
    std::string name = file.filename().string();
    while (name.starts_with('.'))
        name.erase(0, 1);
    if (!name.ends_with(".bin"))
        name += ".bin";
    // It would pass for the model that is downloaded under this name.
    for (const auto& model : catalogue.known()) {
        if (model.fileName == name)
            throw ModelError("\"" + file.filename().string() + "\" is not the " + model.name +
                             " that its name says; give it another name first.");
    }
    return name;
}

}  // namespace

fs::path importModelFile(const fs::path& file, const fs::path& folder, const SpeechModelCatalogue& catalogue,
                         const std::stop_token& stop, const std::function<void(double)>& progress) {
    const auto source = openForReading(file);
    const auto bytes = source.regularFileBytes(file);
    makeFolder(folder);
    std::error_code error;
    if (fs::equivalent(file.parent_path().empty() ? fs::path(".") : file.parent_path(), folder, error) &&
        file.extension() == ".bin")
        return folder / file.filename();
    sweep(folder);
    Newcomer copy(folder);
    const bool shared = ::ioctl(copy.handle().get(), FICLONE, source.get()) == 0;
    if (!shared)
        requireRoom(folder, bytes);
    const auto digest = digestWhileCopying(source, file, shared ? nullptr : &copy, stop, progress);
    const auto* known = catalogue.findByDigest(digest);
    const auto destination = folder / (known ? known->fileName : ownName(file, catalogue));
    copy.moveTo(destination);
    settleNames(folder);
    return destination;
}

}  // namespace korvane
