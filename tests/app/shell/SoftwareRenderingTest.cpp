#include "app/SoftwareRendering.h"

#include <gtest/gtest.h>

using namespace korvane;

namespace {

TEST(SoftwareRendering, isTriedOnceAfterAnyOtherRenderer) {
    for (const char* backend : {"", "rhi", "openvg"})
        EXPECT_TRUE(canFallBack(backend)) << backend;
    EXPECT_FALSE(canFallBack("software"));
}

TEST(SoftwareRendering, isLeftAloneByWhoeverChoseARenderer) {
    const auto before = qgetenv("QT_QUICK_BACKEND");
    qunsetenv("QT_QUICK_BACKEND");
    qunsetenv("QSG_RHI_BACKEND");
    EXPECT_TRUE(isRendererOurChoice());
    qputenv("QSG_RHI_BACKEND", "vulkan");
    EXPECT_FALSE(isRendererOurChoice());
    drawWithoutGraphicsProcessor();
    EXPECT_TRUE(qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"));
    qunsetenv("QSG_RHI_BACKEND");
    qputenv("QT_QUICK_BACKEND", "rhi");
    drawWithoutGraphicsProcessor();
    EXPECT_EQ(qgetenv("QT_QUICK_BACKEND"), "rhi");
    before.isEmpty() ? qunsetenv("QT_QUICK_BACKEND") : qputenv("QT_QUICK_BACKEND", before);
}

}  // namespace
