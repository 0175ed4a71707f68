// The way to the desktop's own services.
#pragma once

#include <QDBusConnection>
#include <optional>

namespace korvane {

/// \return the session's bus; none where there is no session, because looking for one may start one.
std::optional<QDBusConnection> sessionBus();

}  // namespace korvane
