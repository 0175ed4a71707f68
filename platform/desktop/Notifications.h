// Tells people something while they look at another window.
#pragma once

#include <QDBusConnection>
#include <QString>
#include <optional>

#include "platform/desktop/SessionBus.h"

namespace korvane {

/// Main thread only. Waits for nobody; a desktop without notifications shows none, and nobody hears of it.
class Notifications {
  public:
    explicit Notifications(std::optional<QDBusConnection> bus = sessionBus()) : bus_(std::move(bus)) {}

    /// \param summary  one line.
    /// \param body     plain text.
    void show(const QString& summary, const QString& body);

  private:
    std::optional<QDBusConnection> bus_;
};

}  // namespace korvane
