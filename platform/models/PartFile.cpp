#include "platform/models/PartFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "platform/defaults/ReplacedFile.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t settleEvery = 8 << 20;

fs::path partPath(const SpeechModel& model, const fs::path& folder) {
    return folder / (model.fileName + ".part");
}

fs::path notePath(const fs::path& part) {
    return part.string() + ".json";
}

bool sameFile(int descriptor, const fs::path& path) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(descriptor, &opened) == 0 && ::stat(path.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

void removeBoth(const fs::path& part) {
    ::unlink(notePath(part).c_str());
    ::unlink(part.c_str());
}

}  // namespace

PartFile::PartFile(const SpeechModel& model, const fs::path& folder)
    : model_(model), folder_(folder), path_(partPath(model, folder)) {
    open();
    bytes_ = handle_.regularFileBytes(path_);
    settling_ = bytes_;
    readVersion();
    // Longer than the model: of something else.
    if (bytes_ > model.bytes)
        startAnew({});
}

void PartFile::open() {
    for (;;) {
        handle_ =
            FileHandle(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_APPEND | O_NONBLOCK, 0666));
        if (!handle_)
            throw ModelError("\"" + path_.string() + "\" can't be written: " + systemReason(errno) + ".");
        // Some file systems on a network know no locks; there the digest has to do.
        if (::flock(handle_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            throw ModelError("The model is being downloaded already, by another window or command.");
        // Whoever held the lock may have given the file its name, or removed it.
        if (sameFile(handle_.get(), path_))
            return;
    }
}

void PartFile::readVersion() {
    QFile note(QString::fromStdString(notePath(path_).string()));
    if (!note.open(QIODevice::ReadOnly))
        return;
    const auto object = QJsonDocument::fromJson(note.readAll()).object();
    // A part of another version of the list.
    if (object[QLatin1String("sha256")].toString().toStdString() != model_.sha256) {
        startAnew({});
        return;
    }
    // What one server calls its version means nothing to another.
    if (object[QLatin1String("address")].toString().toStdString() == model_.address)
        version_ = object[QLatin1String("version")].toString().toStdString();
}

PartFile::~PartFile() {
    if (handle_ && bytes_ == 0 && sameFile(handle_.get(), path_))
        removeBoth(path_);
}

void PartFile::digestWhatIsThere(const std::stop_token& stop,
                                 const std::function<void(std::uint64_t)>& progress) {
    digest_ = Sha256();
    std::vector<std::byte> buffer(1 << 20);
    for (std::uint64_t position = 0; position < bytes_;) {
        checkCancelled(stop);
        const auto count = handle_.readAt(buffer.data(), buffer.size(), position, path_);
        if (count == 0)
            break;
        digest_.add({buffer.data(), count});
        position += count;
        progress(position);
    }
}

void PartFile::startAnew(const std::string& version) {
    if (::ftruncate(handle_.get(), 0) != 0)
        throw ModelError("\"" + path_.string() + "\" can't be written: " + systemReason(errno) + ".");
    bytes_ = 0;
    settling_ = 0;
    digest_ = Sha256();
    version_ = version;
    const QJsonObject note{{QStringLiteral("address"), QString::fromStdString(model_.address)},
                           {QStringLiteral("sha256"), QString::fromStdString(model_.sha256)},
                           {QStringLiteral("version"), QString::fromStdString(version)}};
    // Without it a later download begins again, or trusts the digest.
    replaceFile(QString::fromStdString(notePath(path_).string()),
                QJsonDocument(note).toJson(QJsonDocument::Compact));
}

void PartFile::append(std::span<const std::byte> bytes) {
    try {
        handle_.writeAll(bytes.data(), bytes.size(), path_);
    } catch (const FullDiskError&) {
        // A disk that is full to the last block stops other programs too.
        discard();
        throw;
    }
    digest_.add(bytes);
    bytes_ += bytes.size();
    // The disk begins to write now, so that little is left to wait for at the end.
    if (bytes_ - settling_ >= settleEvery) {
        ::sync_file_range(handle_.get(), static_cast<off_t>(settling_),
                          static_cast<off_t>(bytes_ - settling_), SYNC_FILE_RANGE_WRITE);
        settling_ = bytes_;
    }
}

fs::path PartFile::complete() {
    const auto destination = folder_ / model_.fileName;
    if (::fsync(handle_.get()) != 0 || std::rename(path_.c_str(), destination.c_str()) != 0)
        throw ModelError("\"" + destination.string() + "\" can't be written: " + systemReason(errno) + ".");
    ::unlink(notePath(path_).c_str());
    settleNames(folder_);
    return destination;
}

void PartFile::discard() {
    if (::ftruncate(handle_.get(), 0) == 0)
        bytes_ = 0;
    removeBoth(path_);
}

std::uint64_t downloadedPart(const SpeechModel& model, const SpeechModelStore& store) {
    try {
        struct stat info {};
        if (::stat(partPath(model, store.folder()).c_str(), &info) != 0 || !S_ISREG(info.st_mode))
            return 0;
        const auto bytes = static_cast<std::uint64_t>(info.st_size);
        return bytes > model.bytes ? 0 : bytes;
    } catch (const ModelError&) {
        return 0;  // no folder, no part
    }
}

void discardPart(const SpeechModel& model, const SpeechModelStore& store) {
    const auto part = partPath(model, store.folder());
    const FileHandle handle(::open(part.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
    if (handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) == 0 && sameFile(handle.get(), part))
        removeBoth(part);
}

}  // namespace korvane
