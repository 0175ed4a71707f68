// What the application does at the ends of its life beyond opening its window: nothing, and it says so. What
// a person sets is saved when it is set, so there is nothing left to save at the end.
#pragma once

namespace korvane {

class AppDelegate {
  public:
    /// The event loop runs.
    void applicationDidFinishLaunching() {}
    /// The event loop has ended, the window is still in memory.
    void applicationWillTerminate() {}
    /// Whether a session manager may keep what the application hands it for a later start.
    bool applicationSupportsSecureRestorableState() const { return true; }
};

}  // namespace korvane
