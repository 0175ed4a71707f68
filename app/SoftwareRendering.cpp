#include "app/SoftwareRendering.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <cstdio>

#include "platform/desktop/GraphicsProcessor.h"
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

/// What draws, on the thread that draws.
bool hasDriverWithoutGraphicsProcessor() {
    const QOpenGLContext* context = QOpenGLContext::currentContext();
    if (!context)
        return false;
    const auto* name = reinterpret_cast<const char*>(context->functions()->glGetString(GL_RENDERER));
    return name && isDrawnByProcessor(name);
}

}  // namespace

bool isRendererOurChoice() {
    return qEnvironmentVariableIsEmpty(backendVariable) && qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND");
}

void drawWithoutGraphicsProcessor() {
    if (isRendererOurChoice() && !hasGraphicsProcessor())
        qputenv(backendVariable, "software");
}

bool canFallBack(const QByteArray& backend) {
    return backend != "software";
}

void fallBackToSoftwareRendering(QQuickWindow& window, char** arguments) {
    // Having a listener also keeps the toolkit from ending the process by itself. The signal may come from
    // the thread that draws.
    QObject::connect(
        &window, &QQuickWindow::sceneGraphError, &window, [arguments] { startAnewWithSoftware(arguments); },
        Qt::QueuedConnection);
    if (!isRendererOurChoice())
        return;
    QObject::connect(
        &window, &QQuickWindow::sceneGraphInitialized, &window,
        [&window, arguments] {
            if (hasDriverWithoutGraphicsProcessor())
                QMetaObject::invokeMethod(
                    &window, [arguments] { startAnewWithSoftware(arguments); }, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
}

}  // namespace korvane
