// The font menu with as many families as are installed.
#include <QDeadlineTimer>

#include "bench/window/Desk.h"
#include "bench/window/Frame.h"
#include "bench/window/Jobs.h"

namespace korvane::bench {
namespace {

constexpr int kNotch = 120;
constexpr int kNotches = 120;

void scroll(Desk& desk) {
    const QPointF middle = desk.place(desk.item("families"));
    double frames = 0.0;
    print(desk.watch("scrolling the fonts", [&] {
        const FrameCounter counter(desk.window());
        QElapsedTimer timer;
        timer.start();
        for (int i = 1; i <= kNotches; ++i) {
            desk.turnWheel(middle, -kNotch);
            const auto next = static_cast<qint64>(i * kFrameMs * 1e6);
            desk.until([&] { return timer.nsecsElapsed() >= next; });
        }
        frames = counter.frames() / (static_cast<double>(timer.nsecsElapsed()) / 1e9);
    }));
    print("scrolling frames/s", frames);
}

}  // namespace

void measureFontMenu() {
    Desk desk;
    StyleEditor& style = *desk.view().styleEditor();
    print("families", static_cast<double>(style.fontFamilies().size()));
    double openedMs = 0.0;
    for (const char* step : {"font menu opened", "font menu opened again"}) {
        print(desk.watch(step, [&] {
            QElapsedTimer timer;
            timer.start();
            desk.click(desk.place(desk.item("font")));
            desk.nextFrame();
            openedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        }));
        print(step, openedMs);
        if (std::string(step) == "font menu opened")
            desk.click(desk.place(desk.item("font")));
        desk.runFor(500);
    }
    scroll(desk);
    print(desk.watch("search", [&] {
        for (const char* text : {"s", "sa", "sam", "sample", "9"}) {
            style.fontList()->setSearch(QString::fromLatin1(text));
            desk.nextFrame();
        }
    }));
    desk.click({5, 300});
    desk.runFor(500);
    print(desk.watch("choosing families", [&] {
        for (int i = 0; i < style.fontFamilies().size(); i += 50) {
            style.chooseFamily(style.fontFamilies()[i]);
            desk.nextFrame();
        }
    }));
    print(desk.watch("a family of many weights", [&] { style.chooseFamily(QStringLiteral("Inter")); }));
    print("weights", static_cast<double>(style.weightNames().size()));
    print(desk.watch("weights opened", [&] { desk.click(desk.place(desk.item("weight"))); }));
}

}  // namespace korvane::bench
