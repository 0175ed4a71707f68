// Asks the running desktop where it puts the title buttons. Lives on the main thread.
#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <optional>

#include "platform/desktop/TitleButtons.h"

class QDBusPendingCallWatcher;

namespace korvane {

/// Where the settings files lie, and whose they are.
struct DesktopEnvironment {
    std::filesystem::path configFolder;  ///< $XDG_CONFIG_HOME, else ~/.config
    std::string currentDesktop;          ///< $XDG_CURRENT_DESKTOP, e.g. "KDE" or "ubuntu:GNOME"
    bool hasSessionBus = false;          ///< without one, looking for one may start one

    static DesktopEnvironment ofProcess();
};

/// What the settings files say: KDE's where KDE runs, then GTK's, then KDE's anyway; else the usual buttons
/// on the right. Never fails; a file that isn't there or can't be read says nothing.
TitleButtons titleButtonsFromFiles(const DesktopEnvironment& environment);

/// Knows the answer of the files at once, and that of the desktop's settings service when it comes, which is
/// most often before the window is shown. The service is asked without waiting.
class DesktopSettings : public QObject {
    Q_OBJECT
  public:
    explicit DesktopSettings(DesktopEnvironment environment = DesktopEnvironment::ofProcess());

    const TitleButtons& titleButtons() const { return titleButtons_; }

    /// Takes what the service has answered by now, without the event loop. titleButtonsChanged() may follow.
    void takeAnswer();

  Q_SIGNALS:
    void titleButtonsChanged();

  private:
    void askService();

    TitleButtons titleButtons_;
    QDBusPendingCallWatcher* answer_ = nullptr;  ///< a child; null once taken
};

}  // namespace korvane
