#include "platform/desktop/SessionBus.h"

#include "platform/desktop/DesktopSettings.h"

namespace korvane {

std::optional<QDBusConnection> sessionBus() {
    if (!DesktopEnvironment::ofProcess().hasSessionBus)
        return std::nullopt;
    return QDBusConnection::sessionBus();
}

}  // namespace korvane
