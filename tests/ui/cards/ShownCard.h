// One card in a window without a screen, given its values by a test, which finds its parts by what they show.
// Main thread.
#pragma once

#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace korvane {

class ShownCard {
  public:
    /// \param type  such as "FileCard". Whatever QML complains about later fails the test.
    ShownCard(const char* type, QVariantMap values, int width = 560) {
        engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QObject::connect(&engine_, &QQmlEngine::warnings, [](const QList<QQmlError>& errors) {
            for (const auto& error : errors)
                ADD_FAILURE() << error.toString().toStdString();
        });
        values.insert(QStringLiteral("width"), width);
        const auto file = QStringLiteral("qrc:/qt/qml/Korvane/Cards/%1.qml").arg(QLatin1String(type));
        QQmlComponent component(&engine_, QUrl(file));
        card.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(values)));
        if (!card)
            throw std::runtime_error(component.errorString().toStdString());
        card->setParentItem(window.contentItem());
        window.resize(width, 400);
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void set(const char* property, const QVariant& value) { card->setProperty(property, value); }

    /// The first part that is so, in the order of the tree; the test ends without one.
    QQuickItem& where(const std::function<bool(const QQuickItem&)>& isSo) const {
        if (QQuickItem* found = search(*card, isSo))
            return *found;
        throw std::runtime_error("the card has no such part");
    }
    QQuickItem& named(const char* objectName) const {
        return where([&](const QQuickItem& item) { return item.objectName() == QLatin1String(objectName); });
    }
    QQuickItem& with(const char* property, const QVariant& value) const {
        return where([&](const QQuickItem& item) { return item.property(property) == value; });
    }
    QQuickItem& saying(const char* text) const {
        return where([&](const QQuickItem& item) {
            return item.inherits("QQuickText") && item.property("text").toString() == QString::fromUtf8(text);
        });
    }

    static QRectF place(const QQuickItem& item) { return item.mapRectToScene(QRectF({}, item.size())); }
    void click(const QQuickItem& item) {
        QTest::mouseClick(&window, Qt::LeftButton, {}, place(item).center().toPoint());
    }
    void focus(QQuickItem& item) { item.forceActiveFocus(Qt::TabFocusReason); }
    void key(Qt::Key key) { QTest::keyClick(&window, key); }
    /// Runs the event loop until it is so, for at most five seconds.
    static bool wait(const std::function<bool()>& isSo) { return QTest::qWaitFor(isSo, 5000); }

  private:
    static QQuickItem* search(QQuickItem& item, const std::function<bool(const QQuickItem&)>& isSo) {
        if (isSo(item))
            return &item;
        for (QQuickItem* child : item.childItems())
            if (QQuickItem* found = search(*child, isSo))
                return found;
        return nullptr;
    }

    QQmlEngine engine_;

  public:
    QQuickWindow window;
    std::unique_ptr<QQuickItem> card;
};

inline QString text(const QQuickItem& item) {
    return item.property("text").toString();
}
inline QFont fontOf(const QQuickItem& item) {
    return item.property("font").value<QFont>();
}
inline std::string colorOf(const QQuickItem& item) {
    return item.property("color").value<QColor>().name(QColor::HexArgb).toStdString();
}
inline std::string nameOf(const QColor& color) {
    return color.name(QColor::HexArgb).toStdString();
}

}  // namespace korvane
