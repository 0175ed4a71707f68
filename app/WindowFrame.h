// What the window does as a window, now that no frame of the desktop surrounds it: moving, resizing, its
// title buttons, its corners. Made before the window, main thread only; without a window nothing happens.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QSize>
#include <QStringList>
#include <QWindow>
#include <functional>
#include <optional>

#include "platform/desktop/DesktopSettings.h"

namespace korvane {

class WindowFrame : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's controller")
    Q_PROPERTY(bool buttonsOnLeft READ buttonsOnLeft NOTIFY buttonsChanged)
    Q_PROPERTY(QStringList buttons READ buttons NOTIFY buttonsChanged)  // "close", "minimize", "maximize"
    Q_PROPERTY(bool isMaximized READ isMaximized NOTIFY shapeChanged)
    Q_PROPERTY(bool isFullScreen READ isFullScreen NOTIFY shapeChanged)
    Q_PROPERTY(bool isActive READ isActive NOTIFY shapeChanged)
    Q_PROPERTY(bool canResize READ canResize NOTIFY shapeChanged)
    Q_PROPERTY(qreal cornerRadius READ cornerRadius NOTIFY shapeChanged)  // points; 0: square
    Q_PROPERTY(QSize startSize READ startSize CONSTANT)
    Q_PROPERTY(QSize minimumSize READ minimumSize CONSTANT)

  public:
    /// \param hasCompositor  asked anew whenever the window is shown, entered or left.
    WindowFrame(DesktopSettings& settings, std::function<bool()> hasCompositor);

    /// Takes the window and its frame: from now on it stands without one.
    void setWindow(QWindow* window);

    bool buttonsOnLeft() const { return settings_.titleButtons().onLeft; }
    QStringList buttons() const;
    bool isMaximized() const;
    bool isFullScreen() const;
    bool isActive() const { return window_ && window_->isActive(); }
    bool canResize() const { return window_ && !isMaximized() && !isFullScreen(); }
    qreal cornerRadius() const { return cornerRadius_; }
    QSize startSize() const;
    QSize minimumSize() const;

    // The title buttons by the names of `buttons`. \param isMaximized  whether the window is.
    Q_INVOKABLE static QString buttonLabel(const QString& button, bool isMaximized);
    /// The name of its sign.
    Q_INVOKABLE static QString buttonIcon(const QString& button, bool isMaximized);
    Q_INVOKABLE void pressButton(const QString& button);

    Q_INVOKABLE void close();
    Q_INVOKABLE void minimize();
    Q_INVOKABLE void toggleMaximized();
    Q_INVOKABLE void toggleFullScreen();

    // The pointer, in points of the whole desktop. Where the desktop can't move windows by itself (there is
    // no window manager), the window follows the pointer by our own doing.
    /// On the ground of the window: moves it once the pointer has gone some way. Where a control that is
    /// switched off lies above the ground, nothing.
    Q_INVOKABLE void pressGround(const QPointF& pointer);
    Q_INVOKABLE void pressEdge(Qt::Edges edges, const QPointF& pointer);
    Q_INVOKABLE void movePointer(const QPointF& pointer);
    Q_INVOKABLE void release();

  Q_SIGNALS:
    void buttonsChanged();
    void shapeChanged();

  private:
    struct Hold {
        QPointF pointer;
        QRect geometry;
        Qt::Edges edges;          ///< none: the ground
        bool isOurDoing = false;  ///< the desktop left it to us
    };

    void askForCompositor();
    void updateShape();
    void follow(const QPointF& pointer);

    DesktopSettings& settings_;
    std::function<bool()> hasCompositor_;
    QPointer<QWindow> window_;
    std::optional<Hold> hold_;
    bool isBlended_ = false;
    qreal cornerRadius_ = 0;
};

}  // namespace korvane
