// A reel that plays in a loop: what was due, shown and drawn, and what it took.
#include <QElapsedTimer>
#include <cstdio>

#include "bench/window/Jobs.h"
#include "bench/window/PreviewPress.h"
#include "bench/window/Transcript.h"

namespace korvane::bench {
namespace {

void playAlone(Desk& desk, double seconds, const int& laps) {
    const PreviewPlayer& player = *desk.view().previewPlayer();
    const PlayerView& picture = pictureOf(desk);
    const PlayerStatistics before = player.statistics();
    const std::int64_t drawnBefore = picture.drawnPictures();
    const int lapsBefore = laps;
    const double processorBefore = processorMs();
    const FrameCounter counter(desk.window());
    QElapsedTimer timer;
    timer.start();
    desk.leaveAlone(static_cast<int>(seconds * 1e3));
    const double passed = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    const PlayerStatistics after = player.statistics();
    print("processor seconds", (processorMs() - processorBefore) / 1e3);
    print("seconds", passed);
    print("shown", static_cast<double>(after.shownFrames - before.shownFrames));
    print("dropped", static_cast<double>(after.droppedFrames - before.droppedFrames));
    print("underruns", static_cast<double>(after.soundUnderruns - before.soundUnderruns));
    print("drawn", static_cast<double>(picture.drawnPictures() - drawnBefore));
    print("longest gap", counter.longestGapMs());
    print("laps", laps - lapsBefore);
    const qreal ratio = desk.window().effectiveDevicePixelRatio();
    print("width", picture.width() * ratio);
    print("height", picture.height() * ratio);
}

}  // namespace

void measurePlaying(const std::string& video, const ReelShape& shape, double seconds) {
    int laps = 0;  // outlives the player
    Desk desk(saying(chooseWords(shape)));
    openVideo(desk, video);
    transcribe(desk);
    print(desk.watch("preview", [&] { pressPreview(desk); }));
    desk.view().previewPlayer()->observeEnd([&laps] { ++laps; });
    playAlone(desk, seconds, laps);

    const int before = laps;
    print(desk.watch("playing through a loop", [&] {
        desk.until([&] { return laps > before; });
        desk.runFor(2000);
    }));
    measureStyling(desk);
    print(desk.watch("close", [&] { pressClose(desk); }));
}

}  // namespace korvane::bench
