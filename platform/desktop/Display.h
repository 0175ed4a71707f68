// Whether a window can be shown at all, found out before Qt is asked, which ends the process when it can't.
#pragma once

#include <memory>
#include <string>

namespace korvane {

/// What the session says about its displays. Empty: not set.
struct DisplayEnvironment {
    std::string platform;        ///< $QT_QPA_PLATFORM: what the person insists on
    std::string waylandDisplay;  ///< $WAYLAND_DISPLAY
    std::string x11Display;      ///< $DISPLAY

    static DisplayEnvironment ofProcess();
};

struct DisplayChoice {
    /// What $QT_QPA_PLATFORM has to be; empty: leave the choice to Qt.
    std::string platform;
    /// One sentence for the person when there is no display; empty: there is one.
    std::string problem;
    /// To the X server that answered; none otherwise. Keep it until the application object has one of its
    /// own: a server that its last client leaves starts afresh, and refuses everybody meanwhile.
    std::shared_ptr<void> connection = nullptr;
    friend bool operator==(const DisplayChoice&, const DisplayChoice&) = default;
};

/// The rule, apart from trying. \param waylandAnswers, x11Answers  whether the display named was reached.
DisplayChoice chooseDisplay(const DisplayEnvironment& environment, bool waylandAnswers, bool x11Answers);

/// Tries the displays named and chooses among them. Takes a few milliseconds, two seconds when none
/// answers. Before the application object.
DisplayChoice findDisplay(const DisplayEnvironment& environment = DisplayEnvironment::ofProcess());

}  // namespace korvane
