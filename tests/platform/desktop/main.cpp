#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

// File panels are widgets, and compositors belong to an application. The person's own settings stay out of
// it.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME"})
        qputenv(variable, home.path().toUtf8());
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
