#include <gtest/gtest.h>

#include <QFont>
#include <QGuiApplication>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // With a display, the same holds with a graphics processor.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
    return RUN_ALL_TESTS();
}
