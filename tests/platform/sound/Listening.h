// A short reel that plays on the machine's sound server, and an ear at one of the server's devices.
#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

#include "platform/av/Player.h"
#include "platform/sound/PulseOutputFactory.h"
#include "platform/tasks/QtMainQueue.h"
#include "tests/platform/sound/PrivateSoundServer.h"

namespace korvane {

extern PrivateSoundServer* soundServer;

inline const MediaTime kReelLoopPoint(150, 600);

/// Words of 0.45 s each, out of order, 30 pictures a second, mono sound at 48 kHz.
std::shared_ptr<PlayerItem> soundReel(const std::vector<int>& seconds = {7, 2, 5},
                                      MediaTime word = MediaTime(270, 600));

/// Runs the event loop until `done` holds. \return false when that takes too long.
bool until(const std::function<bool()>& done, int timeoutMs = 15'000);
/// Runs the event loop for so long.
void pass(int ms);

/// 16-bit samples of a file, from -1 to 1.
std::vector<float> recordedSamples(const QString& file);

/// True once anything is heard at the server's device, from now on.
bool isHeard(const QString& device = QStringLiteral("nul"), int timeoutMs = 10'000);

/// The reel in a loop, as the preview plays it.
struct LoopedReel {
    QtMainQueue queue;
    SteadyPlaybackClock clock;
    PulseOutputFactory outputs;
    std::unique_ptr<Player> player = std::make_unique<Player>(queue, clock, outputs, soundReel());
    int ends = 0;
    Observation atEnd;

    LoopedReel();
    /// Waits until so many more laps were played. \return seconds that took; negative: too long.
    double lap(int laps, int timeoutMs = 15'000);
};

}  // namespace korvane
