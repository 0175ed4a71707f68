// Shows a file where it lies.
#pragma once

#include <QDBusConnection>
#include <QUrl>
#include <filesystem>
#include <functional>
#include <optional>

#include "platform/desktop/SessionBus.h"

namespace korvane {

/// Main thread only; waits for nobody.
class FileManager {
  public:
    using Opener = std::function<void(const QUrl& folder)>;

    /// Opens a folder with whatever the desktop has for folders.
    static void openWithDesktop(const QUrl& folder);

    explicit FileManager(std::optional<QDBusConnection> bus = sessionBus(), Opener opener = openWithDesktop)
        : bus_(std::move(bus)), opener_(std::move(opener)) {}

    /// Opens the desktop's file manager with the file chosen; one that can't do that just opens the folder.
    /// \param file  absolute.
    void show(const std::filesystem::path& file) const;

  private:
    std::optional<QDBusConnection> bus_;
    Opener opener_;
};

}  // namespace korvane
