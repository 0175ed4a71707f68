// A window with one piece of QML in it, for a test to look at and to touch. Main thread.
#pragma once

#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <functional>

namespace korvane {

class Stage {
  public:
    /// \param qml  the root item, without imports; it is the window's size unless it has its own.
    explicit Stage(const QByteArray& qml, const QSize& size = QSize(300, 200));

    QQuickView& view() { return view_; }
    QQuickItem& root() { return *view_.rootObject(); }
    /// The item or object of that objectName; the test ends without it.
    QObject& object(const char* name);
    QQuickItem& item(const char* name);
    /// What the window shows, at the screen's pixels.
    QImage picture() { return view_.grabWindow(); }

    void click(const QPoint& point);
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const char* text);
    /// \param eighths  of a degree: 120 is one notch away from the person.
    void wheel(const QPoint& point, int eighths);
    /// Runs the event loop until `done`, for at most five seconds.
    static bool wait(const std::function<bool()>& done);

  private:
    QQuickView view_;
};

}  // namespace korvane
