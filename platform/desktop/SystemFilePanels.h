// The file panels of the desktop where it offers them to Qt (portals do), else Qt's own in the window's
// colours.
#pragma once

#include <QPalette>
#include <QPointer>
#include <QString>
#include <QWindow>

#include "platform/desktop/FilePanels.h"

class QFileDialog;

namespace korvane {

/// Panels are modal to the window. The first one starts in the person's folder of videos, each later one
/// where the last was left by OK; nothing of this outlives the process. Main thread, QApplication.
class SystemFilePanels : public FilePanels {
  public:
    /// \param palette  for panels that Qt draws.
    explicit SystemFilePanels(QPalette palette);

    /// Panels stand above this window from now on; none: they stand alone.
    void setWindow(QWindow* window) { window_ = window; }

    std::optional<std::filesystem::path> runOpenPanel(const OpenPanelRequest& request) override;
    std::optional<std::filesystem::path> runSavePanel(const SavePanelRequest& request) override;

    /// Prepares a dialog as the request says, all but folder and colours.
    static void configure(QFileDialog& dialog, const OpenPanelRequest& request);
    static void configure(QFileDialog& dialog, const SavePanelRequest& request);

  private:
    template <class Request>
    std::optional<std::filesystem::path> run(const Request& request);
    QString startFolder() const;

    QPalette palette_;
    QPointer<QWindow> window_;
    QString lastFolder_;  ///< empty until a panel ended with OK
};

/// The filters that a panel offers: all types together first, where there are several, then each; every one
/// as "description (patterns)". Patterns come from the shared MIME database, else from the usual suffix, and
/// stand in small and capital letters, because not every desktop's panel overlooks the difference.
QStringList nameFilters(const std::vector<PanelFileType>& types);

}  // namespace korvane
