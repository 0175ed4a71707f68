#include <gtest/gtest.h>

#include <QFont>
#include <QGuiApplication>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
    return RUN_ALL_TESTS();
}
