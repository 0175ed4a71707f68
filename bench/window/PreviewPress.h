// The Preview button under the hand, and what it brings.
#pragma once

#include "bench/window/Desk.h"
#include "ui/player/PlayerView.h"

namespace korvane::bench {

struct Press {
    double firstFrameMs = 0.0;  ///< until a frame with the reel's first picture was handed to the display
    double playingMs = 0.0;     ///< until it plays
    double processorMs = 0.0;   ///< of the whole program, until the first frame
};

/// Of all threads, in the program and in the kernel for it.
double processorMs();

PlayerView& pictureOf(Desk& desk);

/// \throws std::runtime_error with what the screen says, when there is no preview to be had.
Press pressPreview(Desk& desk);
void pressClose(Desk& desk);

}  // namespace korvane::bench
