#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFont>

#include "app/ControlAccessibility.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    // As if someone listened: only then do buttons keep the roles that they are given.
    QAccessible::setActive(true);
    korvane::installControlAccessibility();
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
    return RUN_ALL_TESTS();
}
