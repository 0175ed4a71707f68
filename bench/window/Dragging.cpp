// Style sliders under the mouse, saving at every change.
#include <QDeadlineTimer>
#include <cmath>

#include "bench/window/Desk.h"
#include "bench/window/Frame.h"
#include "bench/window/Jobs.h"

namespace korvane::bench {
namespace {

constexpr int kMoves = static_cast<int>(4 * kFramesPerSecond);
/// Of the slider's length, there and back; each move is a new value.
constexpr int kMovesAcross = 40;

/// From one end to the other and back, 0 to 1.
double swing(int move) {
    const int at = move % (2 * kMovesAcross);
    return static_cast<double>(std::min(at, 2 * kMovesAcross - at)) / kMovesAcross;
}

void drag(Desk& desk, const char* slider, bool upright) {
    QQuickItem& item = desk.item(slider);
    const auto placeOf = [&](int move) {
        const double along = 0.1 + 0.8 * swing(move);
        return upright ? desk.place(item, 0.5, 1.0 - along) : desk.place(item, along, 0.5);
    };
    int saves = 0;
    const auto connection =
        QObject::connect(&desk.view(), &ContentView::subtitleSettingsChanged, [&saves] { ++saves; });
    double frames = 0.0;
    double gap = 0.0;
    double seconds = 0.0;
    const auto step = desk.watch(std::string("dragging ") + slider, [&] {
        desk.press(placeOf(0));
        desk.nextFrame();
        const FrameCounter counter(desk.window());
        QElapsedTimer timer;
        timer.start();
        for (int move = 1; move <= kMoves; ++move) {
            desk.moveTo(placeOf(move), Qt::LeftButton);
            const auto next = static_cast<qint64>(std::llround(move * kFrameMs * 1e6));
            desk.until([&] { return timer.nsecsElapsed() >= next; });
        }
        seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        frames = counter.frames();
        gap = counter.longestGapMs();
        desk.release(placeOf(kMoves));
    });
    QObject::disconnect(connection);
    print(step);
    const std::string name(slider);
    print((name + " frames/s").c_str(), frames / seconds);
    print((name + " longest gap").c_str(), gap);
    print((name + " saves/s").c_str(), saves / seconds);
}

}  // namespace

void measureDragging() {
    Desk desk;
    drag(desk, "size", false);
    drag(desk, "position", true);
}

}  // namespace korvane::bench
