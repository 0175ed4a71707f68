#include "platform/defaults/FileUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "platform/defaults/ReplacedFile.h"

namespace korvane {

FileUserDefaults::FileUserDefaults(QString folder) : folder_(std::move(folder)) {}

QString FileUserDefaults::userFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/korvane");
}

QString FileUserDefaults::fileFor(const std::string& key) const {
    // Letters, digits, '-', '.', '_' and '~' stay as they are; "." and ".." gain an ending and are harmless.
    const QByteArray name = QByteArray::fromStdString(key).toPercentEncoding();
    return folder_ + QLatin1Char('/') + QString::fromLatin1(name) + QStringLiteral(".json");
}

std::optional<QByteArray> FileUserDefaults::data(const std::string& key) const {
    QFile file(fileFor(key));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes;
}

bool FileUserDefaults::setData(const QByteArray& data, const std::string& key) {
    if (!QDir().mkpath(folder_))
        return false;
    return replaceFile(fileFor(key), data);
}

bool FileUserDefaults::remove(const std::string& key) {
    const QString file = fileFor(key);
    return QFile::remove(file) || !QFileInfo::exists(file);
}

}  // namespace korvane
