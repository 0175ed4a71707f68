#include "model/SpeechSegment.h"

#include <gtest/gtest.h>

#include <concepts>
#include <limits>
#include <vector>

namespace korvane {
namespace {

TEST(SpeechSegment, keepsWhatItWasMadeOf) {
    const SpeechSegment segment("So", 0.31, 0.52);
    EXPECT_EQ(segment.text(), "So");
    EXPECT_EQ(segment.start(), 0.31);
    EXPECT_EQ(segment.end(), 0.52);
}

TEST(SpeechSegment, doesNotJudgeItsTimes) {
    const SpeechSegment backwards("x", 2.0, 1.0);
    EXPECT_GT(backwards.start(), backwards.end());
    EXPECT_NE(SpeechSegment("x", 0.0, std::numeric_limits<double>::quiet_NaN()).end(), 0.0);
}

// Words are told apart by their index: a comparison would make two equal ones look like one.
TEST(SpeechSegment, cannotBeCompared) {
    EXPECT_FALSE(std::equality_comparable<SpeechSegment>);
    const std::vector<SpeechSegment> transcript{{"the", 1.0, 1.2}, {"the", 1.0, 1.2}};
    EXPECT_NE(&transcript[0], &transcript[1]);
    EXPECT_EQ(transcript.size(), 2U);
}

}  // namespace
}  // namespace korvane
