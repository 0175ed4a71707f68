// What lies behind the speech of a stretch, judged by its quietest moments.
#pragma once

#include "platform/speech/ShortSpectra.h"

namespace korvane {

/// A value; costs as much as the spectra that it is taken from, about a thousandth of the sound's length.
struct BackgroundSound {
    /// How far the loudest fiftieth of the moments stands above the quietest twentieth.
    double rangeDb = 0.0;
    /// How much the spectrum of the quietest fifth goes up and down from band to band, for as many moments as
    /// there are: chance makes 5 to 8 of a noise, whatever its colour; tones make 10 to 24.
    double ripple = 0.0;

    static BackgroundSound of(ShortSpectra& spectra);

    /// It doesn't change, and it is loud enough to be in the way of recognition.
    bool isAudibleNoise() const;
};

}  // namespace korvane
