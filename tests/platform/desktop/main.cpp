#include <gtest/gtest.h>

#include <QApplication>

// File panels are widgets, and compositors belong to an application.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
