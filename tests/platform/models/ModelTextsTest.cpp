#include "platform/models/ModelTexts.h"

#include <gtest/gtest.h>

using namespace korvane;

namespace {

TEST(ModelTexts, bytesAsAPersonReadsThem) {
    EXPECT_EQ(byteText(0), "0 kB");
    EXPECT_EQ(byteText(1), "1 kB");
    EXPECT_EQ(byteText(43537433), "44 MB");
    EXPECT_EQ(byteText(4200000), "4.2 MB");
    EXPECT_EQ(byteText(574041195), "574 MB");
    EXPECT_EQ(byteText(999400000), "999 MB");
    EXPECT_EQ(byteText(999600000), "1.0 GB");
    EXPECT_EQ(byteText(1624555275), "1.6 GB");
    EXPECT_EQ(byteText(16000000000), "16 GB");
}

TEST(ModelTexts, speedsAsAPersonReadsThem) {
    EXPECT_EQ(speedText(31.9), "about 30 times faster than the speech");
    EXPECT_EQ(speedText(9.5), "about 10 times faster than the speech");
    EXPECT_EQ(speedText(4.2), "about 4 times faster than the speech");
    EXPECT_EQ(speedText(1.5), "about 2 times faster than the speech");
    EXPECT_EQ(speedText(1.49), "about as fast as the speech");
    EXPECT_EQ(speedText(0.68), "about as fast as the speech");
    EXPECT_EQ(speedText(0.5), "takes about 2 times as long as the speech");
    EXPECT_EQ(speedText(0.0), "takes about 1000 times as long as the speech");
}

TEST(ModelTexts, ratesAndTimes) {
    EXPECT_EQ(rateText(4.2e6), "4.2 MB/s");
    EXPECT_EQ(rateText(310e3), "310 kB/s");
    EXPECT_EQ(timeLeftText(0.2), "1 s left");
    EXPECT_EQ(timeLeftText(42), "42 s left");
    EXPECT_EQ(timeLeftText(187), "3 min 7 s left");
    EXPECT_EQ(timeLeftText(601), "10 min left");
    EXPECT_EQ(timeLeftText(3900), "1 h 5 min left");
}

}  // namespace
