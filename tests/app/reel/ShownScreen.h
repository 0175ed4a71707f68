// The window of the program over a screen whose services do as they are told.
#pragma once

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>

#include "app/WindowFrame.h"
#include "tests/app/ScreenFixture.h"
#include "tests/app/shell/MadeUpDesktop.h"

namespace korvane {

class ShownScreen : public Screen {
  protected:
    void SetUp() override {
        engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Korvane/App/Main.qml")));
        window_.reset(qobject_cast<QQuickWindow*>(component.createWithInitialProperties(
            {{QStringLiteral("view"), QVariant::fromValue(view_.get())},
             {QStringLiteral("frame"), QVariant::fromValue(&frame_)}})));
        ASSERT_TRUE(window_) << component.errorString().toStdString();
        frame_.setWindow(window_.get());
        window_->show();
        window_->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    ~ShownScreen() override { window_.reset(); }

    /// The visible item of that name; null where none is seen.
    QQuickItem* find(const char* name) const { return findIn(window_->contentItem(), QLatin1String(name)); }
    void click(const char* name) {
        QQuickItem* item = find(name);
        ASSERT_TRUE(item) << name;
        QTest::mouseClick(window_.get(), Qt::LeftButton, Qt::NoModifier,
                          item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
    }
    void key(Qt::Key key) { QTest::keyClick(window_.get(), key); }
    bool hasKeyboard(const char* name) const { return find(name) && find(name)->hasActiveFocus(); }
    QRectF placeOf(const char* name) const {
        return find(name)->mapRectToScene(QRectF(QPointF(), find(name)->size()));
    }

    MadeUpDesktop desktop_;
    WindowFrame frame_{desktop_.settings(), [] { return true; }};
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;

  private:
    static QQuickItem* findIn(QQuickItem* item, QLatin1String name) {
        if (!item->isVisible())
            return nullptr;
        if (item->objectName() == name)
            return item;
        for (QQuickItem* child : item->childItems()) {
            if (QQuickItem* found = findIn(child, name))
                return found;
        }
        return nullptr;
    }
};

}  // namespace korvane
