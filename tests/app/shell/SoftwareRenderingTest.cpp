#include "app/SoftwareRendering.h"

#include <gtest/gtest.h>

using namespace korvane;

namespace {

TEST(SoftwareRendering, isTriedOnceAfterAnyOtherRenderer) {
    for (const char* backend : {"", "rhi", "openvg"})
        EXPECT_TRUE(canFallBack(backend)) << backend;
    EXPECT_FALSE(canFallBack("software"));
}

}  // namespace
