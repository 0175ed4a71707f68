#include "Stage.h"

#include <QQmlComponent>
#include <QTest>
#include <QWheelEvent>
#include <cstdio>
#include <cstdlib>

namespace korvane {

Stage::Stage(const QByteArray& qml, const QSize& size) {
    view_.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view_.setColor(Qt::black);
    view_.setResizeMode(QQuickView::SizeRootObjectToView);
    view_.resize(size);
    auto* component = new QQmlComponent(view_.engine(), &view_);
    component->setData("import QtQuick\nimport QtQuick.Window\nimport Korvane.Controls\n" + qml, QUrl());
    QObject* root = component->create();
    if (root == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(component->errorString()));
        std::abort();
    }
    view_.setContent(QUrl(), component, root);
    view_.show();
    view_.requestActivate();
    if (!QTest::qWaitForWindowActive(&view_)) {
        std::abort();
    }
}

QObject& Stage::object(const char* name) {
    const QString wanted = QString::fromUtf8(name);
    QObject* found = root().objectName() == wanted ? &root() : root().findChild<QObject*>(wanted);
    if (found == nullptr) {
        std::fprintf(stderr, "no object is called %s\n", name);
        std::abort();
    }
    return *found;
}

QQuickItem& Stage::item(const char* name) {
    return dynamic_cast<QQuickItem&>(object(name));
}

void Stage::click(const QPoint& point) {
    QTest::mouseClick(&view_, Qt::LeftButton, Qt::NoModifier, point);
}

void Stage::key(int key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&view_, static_cast<Qt::Key>(key), modifiers);
}

void Stage::type(const char* text) {
    for (const char* letter = text; *letter != '\0'; ++letter) {
        QTest::keyClick(&view_, *letter);
    }
}

void Stage::wheel(const QPoint& point, int eighths) {
    QWheelEvent event(point, view_.mapToGlobal(point), QPoint(), QPoint(0, eighths), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view_, &event);
}

bool Stage::wait(const std::function<bool()>& done) {
    return QTest::qWaitFor(done, 5000);
}

}  // namespace korvane
