// korvane-bench-empty-window STARTNS: the smallest window that Qt Quick can draw, and the milliseconds from
// STARTNS of the steady clock to its first frame. A program of its own, so that it loads no library that it
// doesn't need.
#include <unistd.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

int main(int argc, char** argv) {
    const long long startNs = argc == 2 ? std::atoll(argv[1]) : 0;
    const QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import QtQuick\n"
        "Window { width: 1180; height: 800; Rectangle { anchors.fill: parent; color: '#102040' } }",
        QUrl());
    const std::unique_ptr<QObject> root(component.create());
    auto* window = qobject_cast<QQuickWindow*>(root.get());
    if (!window)
        return 1;
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window,
        [startNs] {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            std::printf("%.3f\n", static_cast<double>(std::chrono::nanoseconds(now).count() - startNs) / 1e6);
            std::fflush(stdout);
            _exit(0);
        },
        Qt::DirectConnection);
    window->show();
    QGuiApplication::exec();
    return 1;
}
