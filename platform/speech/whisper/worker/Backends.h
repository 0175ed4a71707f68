// What the library computes with: plug-ins for processors, and for a graphics card.
#pragma once

#include <string>

namespace korvane::whisper {

struct Backends {
    std::string folder;   ///< of the plug-ins, those for cards in "gpu" below it; empty: the library knows
    bool useCard = true;  ///< else no card's driver is touched

    /// Whether looking for what can compute may load a card's driver.
    bool mayFindCard() const;
    /// Looks for what can compute; once, before the first model.
    void prepare() const;
};

/// The graphics card that the library would use, without spaces; empty: there is none, or it can't be had.
std::string usableCard();

/// Whether there is anything that computes.
bool canCompute();

}  // namespace korvane::whisper
