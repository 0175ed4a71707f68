#include "platform/desktop/Notifications.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

namespace korvane {

// The order of arguments and the meaning of their special values: Desktop Notifications 1.2, freedesktop.org.
void Notifications::show(const QString& summary, const QString& body) {
    if (!bus_)
        return;
    constexpr uint replacesNone = 0;
    constexpr int usualTimeout = -1;
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    call.setArguments({QStringLiteral("Korvane"), replacesNone, QStringLiteral("korvane"), summary,
                       body.toHtmlEscaped(),  // the body alone may carry markup
                       QStringList(),
                       QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("korvane")}},
                       usualTimeout});
    bus_->asyncCall(call);
}

}  // namespace korvane
