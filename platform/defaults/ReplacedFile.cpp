#include "platform/defaults/ReplacedFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace korvane {
namespace {

/// A new file beside its destination, gone again unless it was moved there.
class FileBeside {
  public:
    explicit FileBeside(const QByteArray& destination)
        : destination_(destination), name_(destination + ".XXXXXX"), descriptor_(::mkstemp(name_.data())) {}
    ~FileBeside() {
        if (descriptor_ < 0)
            return;
        ::close(descriptor_);
        ::unlink(name_.constData());
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    bool exists() const { return descriptor_ >= 0; }

    bool write(const QByteArray& content) {
        for (qsizetype written = 0; written < content.size();) {
            const auto step = ::write(descriptor_, content.constData() + written,
                                      static_cast<std::size_t>(content.size() - written));
            if (step < 0 && errno != EINTR)
                return false;
            written += std::max<ssize_t>(step, 0);
        }
        return true;
    }

    bool moveIntoPlace() {
        struct stat before {};
        if (::stat(destination_.constData(), &before) == 0 &&
            ::fchmod(descriptor_, before.st_mode & 07777) != 0)
            return false;
        // Some file systems, those on a network among them, say only now that there was no room.
        const bool closed = ::close(descriptor_) == 0;
        descriptor_ = -1;
        if (closed && std::rename(name_.constData(), destination_.constData()) == 0)
            return true;
        ::unlink(name_.constData());
        return false;
    }

  private:
    QByteArray destination_;
    QByteArray name_;
    int descriptor_;
};

}  // namespace

bool replaceFile(const QString& path, const QByteArray& content) {
    const QString target = QFileInfo(path).canonicalFilePath();
    FileBeside file(QFile::encodeName(target.isEmpty() ? path : target));
    return file.exists() && file.write(content) && file.moveIntoPlace();
}

}  // namespace korvane
