#include "platform/desktop/FileManager.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFile>

namespace korvane {
namespace {

QUrl urlOf(const std::filesystem::path& path) {
    return QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(path.string())));
}

}  // namespace

void FileManager::openWithDesktop(const QUrl& folder) {
    QDesktopServices::openUrl(folder);
}

void FileManager::show(const std::filesystem::path& file) const {
    const QUrl folder = urlOf(file.parent_path());
    if (!bus_) {
        opener_(folder);
        return;
    }
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call.setArguments({QStringList{QString::fromLatin1(urlOf(file).toEncoded())}, QString()});
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, folder, opener = opener_] {
                         const QDBusPendingReply<> reply = *watcher;
                         watcher->deleteLater();
                         if (reply.isError())
                             opener(folder);
                     });
}

}  // namespace korvane
