// The subtitle card in a window without a screen, found by the names of its controls.
#pragma once

#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>

#include "EditedStyle.h"

namespace korvane {

struct CardWindow {
    explicit CardWindow(EditedStyle& edited, int width = 620, int height = 520) : style(edited) {
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QObject::connect(&engine, &QQmlEngine::warnings, [](const QList<QQmlError>& errors) {
            for (const auto& error : errors)
                ADD_FAILURE() << error.toString().toStdString();
        });
        window.resize(width, height);
        window.setColor(QColor(13, 22, 48));
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Korvane/Style/SubtitlesCard.qml")));
        card.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{QStringLiteral("editor"), QVariant::fromValue(&style.editor)},
             {QStringLiteral("width"), width - 20},
             {QStringLiteral("x"), 10},
             {QStringLiteral("y"), 10}})));
        if (!card)
            throw std::runtime_error(component.errorString().toStdString());
        card->setParentItem(window.contentItem());
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QQuickItem* find(const char* name) const {
        auto* found = card->findChild<QQuickItem*>(QString::fromLatin1(name));
        if (!found)
            throw std::runtime_error(std::string("no control is called ") + name);
        return found;
    }
    QPoint centre(const QQuickItem* item) const {
        return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
    }
    void click(const char* name) { QTest::mouseClick(&window, Qt::LeftButton, {}, centre(find(name))); }
    void focus(const char* name) { find(name)->forceActiveFocus(Qt::TabFocusReason); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&window, key, modifiers); }

    EditedStyle& style;
    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> card;
};

}  // namespace korvane
