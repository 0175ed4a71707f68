// korvane: the window. Each start is a process of its own, so that one window's trouble is no other's.
#include <malloc.h>
#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <string_view>

#include "app/AppDelegate.h"
#include "app/SoftwareRendering.h"
#include "app/StartOptions.h"
#include "app/ViewController.h"
#include "app/WindowFont.h"
#include "app/WindowIcon.h"
#include "platform/desktop/Display.h"
#include "platform/desktop/SystemProxy.h"
#include "platform/process/ExitCode.h"
#include "platform/process/Process.h"
#include "platform/process/StopSignals.h"
#include "platform/process/UsageError.h"

using namespace korvane;

namespace {

int ended(ExitCode code) {
    return static_cast<int>(code);
}

ExitCode failedWith(std::string_view sentence, ExitCode code) {
    std::fprintf(stderr, "korvane: %.*s\n", static_cast<int>(sentence.size()), sentence.data());
    return code;
}

/// Each preview has threads of its own and keeps its pictures while it plays. Left to itself the library
/// keeps what they gave back, for every thread anew: hundreds of megabytes after a few dozen previews.
void giveBackLargeMemory() {
    mallopt(M_MMAP_THRESHOLD, 256 * 1024);
}

/// While the application object is made, the toolkit ends the process for want of a working display; it needs
/// no core file for that.
void explainAndLeave(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg)
        return;
    failedWith("The window can't be opened on this display; korvane-cli does without one.", ExitCode::failed);
    BorrowedRuntimeFolder::giveBack();
    _exit(ended(ExitCode::failed));
}

/// Who asks twice doesn't want to wait for what is still being stopped.
void stopAtOnce() {
    BorrowedRuntimeFolder::giveBack();
    _exit(ended(ExitCode::stopped));
}

ExitCode showWindow(const StartOptions& options, char** arguments) {
    AppDelegate delegate;
    ViewController controller;
    controller.viewDidLoad();
    controller.viewDidAppear();
    fallBackToSoftwareRendering(*controller.window(), arguments);
    if (options.video)
        controller.openVideo(*options.video);

    // Not quit(): that asks the window, which may ask a person, and whoever sends signals waits for nobody.
    const StopSignals signals([](int count) { count == 1 ? QApplication::exit() : stopAtOnce(); });
    QTimer::singleShot(0, [&delegate] { delegate.applicationDidFinishLaunching(); });
    QObject::connect(qApp, &QApplication::aboutToQuit, [&delegate] { delegate.applicationWillTerminate(); });
    controller.window()->show();
    QApplication::exec();
    return ExitCode::done;
}

ExitCode openWindow(const StartOptions& options, int argc, char** argv) {
    auto display = findDisplay();
    if (!display.problem.empty())
        return failedWith(display.problem, ExitCode::failed);
    if (!display.platform.empty())
        qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString(display.platform));

    drawWithoutGraphicsProcessor();
    const BorrowedRuntimeFolder borrowed;
    const auto usualHandler = qInstallMessageHandler(explainAndLeave);
    QApplication application(argc, argv);
    qInstallMessageHandler(usualHandler);
    display.connection.reset();
    settleLocale();
    QApplication::setApplicationName(QStringLiteral("korvane"));
    QApplication::setDesktopFileName(QStringLiteral("korvane"));
    QApplication::setWindowIcon(windowIcon());
    QApplication::setFont(windowFont());
    return showWindow(options, argv);
}

}  // namespace

int main(int argc, char** argv) {
    StopSignals::hold();
    prepareProcess();
    giveBackLargeMemory();
    try {
        const auto options = parseStartOptions({argv + 1, argv + argc});
        if (!options.printout.empty()) {
            std::fputs(options.printout.c_str(), stdout);
            return std::fflush(stdout) == 0 ? ended(ExitCode::done) : ended(ExitCode::failed);
        }
        const int code = ended(openWindow(options, argc, argv));
        if (isAnswerAwaited())
            _exit(code);
        return code;
    } catch (const UsageError& error) {
        return ended(failedWith(error.what(), ExitCode::wrongUsage));
    } catch (const std::exception& error) {
        return ended(failedWith(error.what(), ExitCode::failed));
    }
}
