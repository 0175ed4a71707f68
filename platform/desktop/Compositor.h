// Whether something blends the windows on this screen, so that a window may have see-through corners.
#pragma once

namespace korvane {

/// True under Wayland, and under X11 while a compositing manager owns the screen. One round trip to the X
/// server. Needs the application object; main thread.
bool isCompositorRunning();

}  // namespace korvane
