// Owns the one screen and everything it works with, and puts it into the window. Main thread only.
#pragma once

#include <QQuickWindow>
#include <filesystem>
#include <memory>

#include "app/ContentView.h"
#include "app/WindowFrame.h"
#include "platform/defaults/DeferredUserDefaults.h"
#include "platform/defaults/FileUserDefaults.h"
#include "platform/desktop/DesktopSettings.h"
#include "platform/desktop/FileManager.h"
#include "platform/desktop/Notifications.h"
#include "platform/desktop/SystemFilePanels.h"
#include "platform/sound/PulseOutputFactory.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/speech/SystemSpeechAuthorization.h"
#include "platform/tasks/QtMainQueue.h"

class QQmlEngine;

namespace korvane {

/// The screen lives as long as the window does. Destroying this stops what runs and waits for it, so the
/// window should be closed by then.
class ViewController : public QObject {
    Q_OBJECT
  public:
    /// With the recognisers that are installed.
    ViewController();
    explicit ViewController(std::unique_ptr<SpeechRecognizerRegistry> recognizers);
    ~ViewController() override;

    /// Makes the screen, filling the window from edge to edge. The window isn't visible yet.
    /// \throws std::runtime_error when the screen's own files are damaged.
    void viewDidLoad();

    /// Styles the window: no frame and no title of the desktop's, the screen's ground under a title strip
    /// that is all see-through, movable by that ground. Before the window is shown, because one that loses
    /// its frame in front of people's eyes flashes. Without a window nothing happens.
    void viewDidAppear();

    /// As if the file had been dropped on the window; one that is no video is refused on the screen.
    void openVideo(const std::filesystem::path& path);

    /// None before viewDidLoad().
    QQuickWindow* window() const { return window_.get(); }
    ContentView* contentView() const { return contentView_.get(); }

  private:
    std::shared_ptr<PreviewPlayer> makePlayer(std::shared_ptr<PlayerItem> item);
    void prefetchOnceDrawn();

    // In the order in which they need each other; destroyed from the last to the first.
    QtMainQueue mainQueue_;
    FileUserDefaults files_;
    DeferredUserDefaults defaults_{files_};
    std::unique_ptr<SpeechRecognizerRegistry> recognizers_;
    SystemSpeechAuthorization authorization_;
    SystemFilePanels filePanels_;
    DesktopSettings settings_;
    WindowFrame frame_;
    Notifications notifications_;
    FileManager fileManager_;
    SteadyPlaybackClock playbackClock_;
    std::unique_ptr<PulseOutputFactory> sound_;  ///< null until the first preview
    std::unique_ptr<ContentView> contentView_;
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QQuickWindow> window_;
};

}  // namespace korvane
