#include "app/WindowFrame.h"

#include <QGuiApplication>
#include <QLineF>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "app/WindowGeometry.h"

namespace korvane {
namespace {

constexpr qreal roundCorner = 12;
/// A hand that clicks trembles by a point or two.
constexpr qreal moveThreshold = 6;

QString nameOf(TitleButton button) {
    switch (button) {
        case TitleButton::close:
            return QStringLiteral("close");
        case TitleButton::minimize:
            return QStringLiteral("minimize");
        case TitleButton::maximize:
            return QStringLiteral("maximize");
    }
    return {};
}

/// \param point  in the item's own points.
bool hasDisabledAt(const QQuickItem& item, const QPointF& point) {
    if (!item.isVisible() || (item.clip() && !item.contains(point)))
        return false;
    if (!item.isEnabled() && item.contains(point))
        return true;
    const auto children = item.childItems();
    return std::ranges::any_of(
        children, [&](const auto* child) { return hasDisabledAt(*child, child->mapFromItem(&item, point)); });
}

/// Controls that are switched off let the pointer through to the ground.
bool isOnDisabledItem(QWindow* window, const QPointF& pointer) {
    const auto* scene = qobject_cast<QQuickWindow*>(window);
    return scene && hasDisabledAt(*scene->contentItem(), scene->mapFromGlobal(pointer));
}

QSize availableSize() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? QSize() : screen->availableSize();
}

}  // namespace

WindowFrame::WindowFrame(DesktopSettings& settings, std::function<bool()> hasCompositor)
    : settings_(settings), hasCompositor_(std::move(hasCompositor)) {
    connect(&settings_, &DesktopSettings::titleButtonsChanged, this, &WindowFrame::buttonsChanged);
}

void WindowFrame::setWindow(QWindow* window) {
    if (window == nullptr)
        return;
    window_ = window;
    window->setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint |
                     Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    for (const auto signal :
         {&QWindow::widthChanged, &QWindow::heightChanged, &QWindow::xChanged, &QWindow::yChanged})
        connect(window, signal, this, &WindowFrame::updateShape);
    connect(window, &QWindow::windowStateChanged, this, &WindowFrame::updateShape);
    // Whoever turns the compositor on or off comes back to the window afterwards. Asking takes round trips to
    // the display, too long for each step of a move.
    connect(window, &QWindow::activeChanged, this, &WindowFrame::askForCompositor);
    connect(window, &QWindow::visibleChanged, this, &WindowFrame::askForCompositor);
    askForCompositor();
}

void WindowFrame::askForCompositor() {
    isBlended_ = hasCompositor_();
    updateShape();
}

void WindowFrame::updateShape() {
    const QScreen* screen = window_ ? window_->screen() : nullptr;
    const bool isSquare = !canResize() ||
                          (screen && looksTiled(window_->geometry(), screen->availableGeometry())) ||
                          !isBlended_;
    cornerRadius_ = isSquare ? 0 : roundCorner;
    Q_EMIT shapeChanged();
}

QStringList WindowFrame::buttons() const {
    QStringList names;
    for (const auto button : settings_.titleButtons().order)
        names << nameOf(button);
    return names;
}

bool WindowFrame::isMaximized() const {
    return window_ && window_->windowStates().testFlag(Qt::WindowMaximized);
}

bool WindowFrame::isFullScreen() const {
    return window_ && window_->windowStates().testFlag(Qt::WindowFullScreen);
}

QSize WindowFrame::startSize() const {
    return fittedSize(comfortableSize, availableSize());
}

QSize WindowFrame::minimumSize() const {
    return fittedSize(smallestSize, availableSize());
}

QString WindowFrame::buttonLabel(const QString& button, bool isMaximized) {
    if (button == nameOf(TitleButton::close))
        return QStringLiteral("Close");
    if (button == nameOf(TitleButton::minimize))
        return QStringLiteral("Minimize");
    return isMaximized ? QStringLiteral("Restore") : QStringLiteral("Maximize");
}

QString WindowFrame::buttonIcon(const QString& button, bool isMaximized) {
    if (button == nameOf(TitleButton::close))
        return QStringLiteral("xmark");
    if (button == nameOf(TitleButton::minimize))
        return QStringLiteral("minus");
    return isMaximized ? QStringLiteral("square.on.square") : QStringLiteral("square");
}

void WindowFrame::pressButton(const QString& button) {
    if (button == nameOf(TitleButton::close))
        close();
    else if (button == nameOf(TitleButton::minimize))
        minimize();
    else
        toggleMaximized();
}

void WindowFrame::close() {
    if (window_)
        window_->close();
}

void WindowFrame::minimize() {
    if (window_)
        window_->setWindowStates(window_->windowStates() | Qt::WindowMinimized);
}

void WindowFrame::toggleMaximized() {
    if (window_ && !isFullScreen())
        window_->setWindowStates(window_->windowStates() ^ Qt::WindowMaximized);
}

void WindowFrame::toggleFullScreen() {
    if (window_)
        window_->setWindowStates(window_->windowStates() ^ Qt::WindowFullScreen);
}

void WindowFrame::pressGround(const QPointF& pointer) {
    if (window_ && !isFullScreen() && !isOnDisabledItem(window_, pointer))
        hold_ = Hold{pointer, window_->geometry(), {}};
}

void WindowFrame::pressEdge(Qt::Edges edges, const QPointF& pointer) {
    if (!canResize() || window_->startSystemResize(edges))
        return;
    hold_ = Hold{pointer, window_->geometry(), edges, true};
}

void WindowFrame::movePointer(const QPointF& pointer) {
    if (!hold_ || !window_)
        return;
    if (hold_->isOurDoing) {
        follow(pointer);
        return;
    }
    if (QLineF(hold_->pointer, pointer).length() < moveThreshold)
        return;
    if (window_->startSystemMove()) {
        hold_.reset();
        return;
    }
    // A window that fills the screen stays there: only a window manager knows its former size.
    if (!canResize()) {
        hold_.reset();
        return;
    }
    hold_->isOurDoing = true;
    follow(pointer);
}

void WindowFrame::follow(const QPointF& pointer) {
    const QPoint by = (pointer - hold_->pointer).toPoint();
    if (hold_->edges)
        window_->setGeometry(resized(hold_->geometry, hold_->edges, by, window_->minimumSize()));
    else
        window_->setPosition(hold_->geometry.topLeft() + by);
}

void WindowFrame::release() {
    hold_.reset();
}

}  // namespace korvane
