#include "app/VideoFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <algorithm>
#include <filesystem>
#include <system_error>

namespace korvane {
namespace {

/// Exactly these: what only derives from them may be sound alone, as telephones record it.
bool isVideoType(const QMimeType& type) {
    return std::ranges::any_of(videoFileTypes(), [&](const PanelFileType& allowed) {
        return type.name() == QString::fromStdString(allowed.mimeType);
    });
}

/// Asks by opening it: permissions alone don't tell on network and portal folders.
bool canBeRead(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly);
}

QString quotedNameOf(const QUrl& url) {
    const QString name = url.isLocalFile() ? QFileInfo(url.toLocalFile()).fileName() : url.toDisplayString();
    // The name of a folder may end in a slash, which leaves nothing behind it.
    return u'“' + (name.isEmpty() ? url.toDisplayString(QUrl::PreferLocalFile) : name) + u'”';
}

QString reason(const QUrl& url) {
    if (!url.isLocalFile())
        return QStringLiteral(" is not a file on this computer: download it and open the copy.");
    const QString path = url.toLocalFile();
    std::error_code ignored;
    const auto status = std::filesystem::status(QFile::encodeName(path).toStdString(), ignored);
    if (status.type() == std::filesystem::file_type::not_found)
        return QStringLiteral(" is not there any more: choose the video where it lies now.");
    if (!std::filesystem::exists(status))
        return QStringLiteral(
            " can’t be reached: check the permissions of its folder, or choose a copy of it.");
    if (status.type() != std::filesystem::file_type::regular)
        return QStringLiteral(" is not a file: choose a single MP4 or QuickTime video.");
    if (!canBeRead(path))
        return QStringLiteral(" can’t be read: change its permissions, or choose a copy of it.");
    if (!isVideoType(QMimeDatabase().mimeTypeForFile(path)))
        return QStringLiteral(" is not an MP4 or QuickTime video: choose a file that ends in .mp4 or .mov.");
    return {};
}

}  // namespace

const std::vector<PanelFileType>& videoFileTypes() {
    static const std::vector<PanelFileType> types{{"video/mp4", "mp4", "MPEG-4 movie"},
                                                  {"video/quicktime", "mov", "QuickTime movie"}};
    return types;
}

std::optional<std::string> reasonAgainstVideo(const QUrl& url) {
    const QString text = reason(url);
    if (text.isEmpty())
        return std::nullopt;
    return (quotedNameOf(url) + text).toStdString();
}

std::string severalFilesSentence() {
    return "One video is loaded at a time: drop a single file.";
}

}  // namespace korvane
