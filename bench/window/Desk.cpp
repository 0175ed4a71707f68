#include "bench/window/Desk.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>
#include <cstdio>
#include <stdexcept>

#include "platform/speech/InstalledSpeechEngines.h"

namespace korvane::bench {
namespace {

/// Springs and fades are over by then.
constexpr int kRestMs = 700;

}  // namespace

FrameCounter::FrameCounter(QQuickWindow& window)
    : connection_(QObject::connect(
          &window, &QQuickWindow::frameSwapped, &window,
          [this] {
              if (sinceLast_.isValid())
                  longestGapMs_ =
                      std::max(longestGapMs_.load(), static_cast<double>(sinceLast_.nsecsElapsed()) / 1e6);
              sinceLast_.start();
              ++frames_;
          },
          Qt::DirectConnection)) {}

FrameCounter::~FrameCounter() {
    QObject::disconnect(connection_);
}

Desk::Desk() : Desk(makeInstalledSpeechEngines()) {}

Desk::Desk(std::unique_ptr<SpeechRecognizerRegistry> recognizers)
    : controller_(std::make_unique<ViewController>(std::move(recognizers))) {
    controller_->viewDidLoad();
    controller_->viewDidAppear();
    setWatchdog();
    FrameCounter counter(window());
    window().show();
    until([&] { return counter.frames() > 0 && !view().styleEditor()->fontFamilies().isEmpty(); });
    runFor(kRestMs);
}

void Desk::setWatchdog() {
    watchdog_ = std::make_unique<Watchdog>([this] { return view().statusText().toStdString(); });
}

QQuickItem& Desk::item(const char* objectName) {
    const QString name = QString::fromLatin1(objectName);
    std::vector<QQuickItem*> open{window().contentItem()};
    while (!open.empty()) {
        QQuickItem* next = open.back();
        open.pop_back();
        if (next->objectName() == name && next->isVisible())
            return *next;
        for (QQuickItem* child : next->childItems())
            open.push_back(child);
    }
    throw std::runtime_error(std::string("there is no ") + objectName + " on the screen");
}

QPointF Desk::place(QQuickItem& item, double across, double down) {
    return item.mapToScene({across * item.width(), down * item.height()});
}

void Desk::press(QPointF where) {
    QMouseEvent event(QEvent::MouseButtonPress, where, window().mapToGlobal(where), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window(), &event);
}

void Desk::moveTo(QPointF where, Qt::MouseButtons held) {
    QMouseEvent event(QEvent::MouseMove, where, window().mapToGlobal(where), Qt::NoButton, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&window(), &event);
}

void Desk::release(QPointF where) {
    QMouseEvent event(QEvent::MouseButtonRelease, where, window().mapToGlobal(where), Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window(), &event);
}

void Desk::click(QPointF where) {
    moveTo(where, Qt::NoButton);
    press(where);
    release(where);
}

void Desk::turnWheel(QPointF where, int eighthsOfDegree) {
    QWheelEvent event(where, window().mapToGlobal(where), {}, {0, eighthsOfDegree}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window(), &event);
}

void Desk::until(const std::function<bool()>& done, int limitSeconds) {
    const QDeadlineTimer limit(limitSeconds * 1000LL);
    // At least one turn: a hand that is late must not keep the window from answering. The watchdog's
    // questions wake the loop up each millisecond.
    do {
        if (limit.hasExpired())
            throw std::runtime_error("the screen does not get there");
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    } while (!done());
}

void Desk::runFor(int milliseconds) {
    const QDeadlineTimer end(milliseconds);
    until([&] { return end.hasExpired(); });
}

void Desk::nextFrame() {
    FrameCounter counter(window());
    window().update();
    until([&] { return counter.frames() > 0; });
}

void Desk::leaveAlone(int milliseconds) {
    watchdog_.reset();
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    setWatchdog();
}

WatchedStep Desk::watch(const std::string& step, const std::function<void()>& work) {
    watchdog_->begin(step);
    work();
    runFor(kRestMs);
    return watchdog_->end();
}

void print(const WatchedStep& step) {
    std::printf("step\t%s\t%zu", step.name.c_str(), step.main.all.size());
    for (const Waits* waits : {&step.main, &step.own, &step.control})
        std::printf("\t%.3f\t%.3f\t%d", waits->longest(), waits->perMille(), waits->longerThanFrame());
    std::printf("\t%s\n", step.shownAtWorst.c_str());
    std::fflush(stdout);
}

void print(const char* name, double value) {
    std::printf("value\t%s\t%.4f\n", name, value);
    std::fflush(stdout);
}

}  // namespace korvane::bench
