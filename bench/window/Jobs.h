// What korvane-bench-window can do; each job prints what it measured.
#pragma once

#include <cstdint>
#include <string>

#include "bench/WordChoice.h"

namespace korvane::bench {

class Desk;

/// Milliseconds from `startNs` of the steady clock to the first frame, of the program that people start.
int measureStart(std::int64_t startNs, int& argc, char** argv);
/// Size and vertical position dragged, a move each frame.
void measureDragging();
/// A video loaded and transcribed by the installed recogniser, stopped once, then to the end.
void measureTranscription(const std::string& video);
/// So many words come at once; then all, none, toggling, resizing.
void measureWords(const std::string& video, int words);
/// The font menu opened, scrolled and searched, and families with many weights chosen.
void measureFontMenu();
/// Preview pressed once and then so many times, with so many words of which the first ones are the same.
void measurePreviewing(const std::string& video, double sourceSeconds, int words, int presses);
/// A reel looped for so many seconds; then with its style changed.
void measurePlaying(const std::string& video, const ReelShape& shape, double seconds);
/// The style changed over a reel that plays.
void measureStyling(Desk& desk);

}  // namespace korvane::bench
