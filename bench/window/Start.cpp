// As app/main.cpp starts the program, to the first frame.
#include <unistd.h>

#include <QApplication>
#include <QFont>
#include <chrono>
#include <cstdio>

#include "app/SoftwareRendering.h"
#include "app/ViewController.h"
#include "app/WindowIcon.h"
#include "bench/window/Jobs.h"
#include "platform/desktop/Display.h"
#include "platform/process/Process.h"
#include "platform/process/StopSignals.h"

namespace korvane::bench {

int measureStart(std::int64_t startNs, int& argc, char** argv) {
    StopSignals::hold();
    prepareProcess();
    auto display = findDisplay();
    if (!display.problem.empty())
        return 1;
    drawWithoutGraphicsProcessor();
    const BorrowedRuntimeFolder borrowed;
    QApplication application(argc, argv);
    // Not before: a server that its last client leaves refuses everybody for a moment.
    display.connection.reset();
    settleLocale();
    QApplication::setWindowIcon(windowIcon());
    QFont font = QApplication::font();
    font.setFamilies(QStringList{QStringLiteral("Inter")} + font.families() +
                     QStringList{QStringLiteral("Noto Color Emoji")});
    QApplication::setFont(font);

    ViewController controller;
    controller.viewDidLoad();
    controller.viewDidAppear();
    fallBackToSoftwareRendering(*controller.window(), argv);
    QObject::connect(
        controller.window(), &QQuickWindow::frameSwapped, controller.window(),
        [startNs] {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            std::printf("%.3f\n", static_cast<double>(std::chrono::nanoseconds(now).count() - startNs) / 1e6);
            std::fflush(stdout);
            _exit(0);
        },
        Qt::DirectConnection);
    const StopSignals signals([](int) { QApplication::quit(); });
    controller.window()->show();
    QApplication::exec();
    return 1;
}

}  // namespace korvane::bench
