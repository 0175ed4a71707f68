#include "app/SoftwareRendering.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QQuickWindow>
#include <cstdio>

#include "platform/process/ExitCode.h"
#include "platform/process/Process.h"

namespace korvane {
namespace {

constexpr const char* backendVariable = "QT_QUICK_BACKEND";

void startAnewWithSoftware(char** arguments) {
    BorrowedRuntimeFolder::giveBack();
    if (canFallBack(qgetenv(backendVariable))) {
        qputenv(backendVariable, "software");
        execv("/proc/self/exe", arguments);
    }
    std::fputs("Korvane's window can't be drawn on this display.\n", stderr);
    _exit(static_cast<int>(ExitCode::failed));
}

}  // namespace

bool canFallBack(const QByteArray& backend) {
    return backend != "software";
}

void fallBackToSoftwareRendering(QQuickWindow& window, char** arguments) {
    // Having a listener also keeps the toolkit from ending the process by itself. The signal may come from
    // the thread that draws.
    QObject::connect(
        &window, &QQuickWindow::sceneGraphError, &window, [arguments] { startAnewWithSoftware(arguments); },
        Qt::QueuedConnection);
}

}  // namespace korvane
