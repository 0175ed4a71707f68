// The style changed while the reel plays: from the change to the frame that shows it.
#include <QElapsedTimer>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <stdexcept>

#include "bench/Statistics.h"
#include "bench/window/Jobs.h"
#include "bench/window/PreviewPress.h"

namespace korvane::bench {
namespace {

constexpr int kChanges = 20;
constexpr int kBetweenMs = 60;

/// Milliseconds until a frame that was begun after the change has been handed to the display.
double shownAfter(Desk& desk, const std::function<void()>& change) {
    std::atomic<bool> changed = false;
    std::atomic<bool> contained = false;
    std::atomic<double> shownMs = -1.0;
    QElapsedTimer timer;
    const auto synchronized = QObject::connect(
        &desk.window(), &QQuickWindow::afterSynchronizing, &desk.window(),
        [&] { contained = changed.load(); }, Qt::DirectConnection);
    const auto swapped = QObject::connect(
        &desk.window(), &QQuickWindow::frameSwapped, &desk.window(),
        [&] {
            if (contained && shownMs < 0.0)
                shownMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        },
        Qt::DirectConnection);
    timer.start();
    change();
    changed = true;
    desk.until([&] { return shownMs >= 0.0; });
    QObject::disconnect(synchronized);
    QObject::disconnect(swapped);
    return shownMs;
}

void waitForLine(Desk& desk) {
    desk.until([&] { return !desk.view().currentSubtitle().isEmpty(); });
}

/// Nothing else moves while the reel stands still, so what differs is the line.
void checkThatTheLineChanges(Desk& desk, const std::function<void()>& change) {
    waitForLine(desk);
    desk.view().togglePlayback();
    desk.runFor(1000);
    const QImage before = desk.window().grabWindow();
    const QRectF scene = pictureOf(desk).mapRectToScene(pictureOf(desk).boundingRect());
    const qreal ratio = desk.window().effectiveDevicePixelRatio();
    const QRect place = QRectF(scene.topLeft() * ratio, scene.size() * ratio).toAlignedRect();
    shownAfter(desk, change);
    if (desk.window().grabWindow().copy(place) == before.copy(place))
        throw std::runtime_error("a change of style is not seen over the picture");
    desk.view().togglePlayback();
}

void measureKind(Desk& desk, const std::string& name, const std::function<void(int)>& change) {
    checkThatTheLineChanges(desk, [&] { change(kChanges); });
    std::vector<double> times;
    const WatchedStep step = desk.watch("style: " + name, [&] {
        for (int i = 0; i < kChanges; ++i) {
            waitForLine(desk);
            times.push_back(shownAfter(desk, [&] { change(i); }));
            desk.runFor(kBetweenMs);
        }
    });
    print(step);
    const Summary shown = summarize(times);
    print(("style " + name).c_str(), shown.median);
    print(("worst style " + name).c_str(), shown.most);
}

}  // namespace

void measureStyling(Desk& desk) {
    StyleEditor& style = *desk.view().styleEditor();
    measureKind(desk, "size", [&](int i) { style.setFontSize(60.0 + 3 * i); });
    measureKind(desk, "position", [&](int i) { style.setVerticalPosition(0.2 + 0.02 * i); });
    measureKind(desk, "colour", [&](int i) { style.setTextColor(QColor::fromHsv(15 * i, 200, 250)); });
    measureKind(desk, "shadow", [&](int i) { style.setHasShadow(i % 2 == 1); });
    const QStringList families = style.fontFamilies();
    measureKind(desk, "font", [&](int i) { style.setFontFamilyName(families[i % families.size()]); });
}

}  // namespace korvane::bench
