#include <gtest/gtest.h>

#include <QGuiApplication>

#include "tests/platform/sound/PrivateSoundServer.h"

namespace korvane {
PrivateSoundServer* soundServer = nullptr;
}

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    korvane::PrivateSoundServer server;
    if (!server.start())
        return 1;
    korvane::soundServer = &server;
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
