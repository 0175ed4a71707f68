#include "platform/models/Machine.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace korvane;

namespace {

constexpr std::uint64_t gigabyte = 1'000'000'000;

std::string recommended(int cores, std::uint64_t memory, double operations) {
    const Machine machine{cores, memory, operations};
    return recommendedModel(SpeechModelCatalogue::builtIn(), machine)->id;
}

TEST(Machine, isMeasuredOnceAndQuickly) {
    const auto& machine = Machine::here();
    EXPECT_GE(machine.cores, 1);
    EXPECT_GT(machine.memoryBytes, gigabyte / 4);
    // Any processor of this century does more than a hundred million, and none a thousand billion per core.
    EXPECT_GT(machine.operationsPerSecond, 1e8);
    EXPECT_LT(machine.operationsPerSecond, 1e12 * machine.cores);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(&Machine::here(), &machine);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5));
}

TEST(Machine, theExpectedSpeedFollowsTheWorkOfTheModel) {
    const Machine machine{4, 16 * gigabyte, 200e9};
    const auto catalogue = SpeechModelCatalogue::builtIn();
    double before = 1e9;
    for (const auto& model : catalogue.offered()) {
        const double speed = expectedSpeed(model, machine);
        EXPECT_LT(speed, before) << model.id;
        EXPECT_DOUBLE_EQ(speed, expectedSpeed(model.operationsPerSecond, machine));
        before = speed;
    }
    EXPECT_DOUBLE_EQ(expectedSpeed(1e9, {4, 0, 400e9}), 2 * expectedSpeed(1e9, {4, 0, 200e9}));
}

TEST(Machine, coresBeyondWhatAModelCanUseDontCount) {
    EXPECT_DOUBLE_EQ(expectedSpeed(1e9, {16, 0, 1600e9}), expectedSpeed(1e9, {64, 0, 6400e9}));
}

TEST(Machine, theRecommendedModelIsTheBestThatIsFastEnoughAndFits) {
    EXPECT_EQ(recommended(16, 32 * gigabyte, 1600e9), "large-v3-turbo-q5_0");
    EXPECT_EQ(recommended(16, 19 * gigabyte / 10, 1600e9), "small-q8_0")
        << "the large one needs more than half of it";
    EXPECT_EQ(recommended(4, 16 * gigabyte, 200e9), "small-q8_0");
    EXPECT_EQ(recommended(4, 16 * gigabyte, 80e9), "base-q8_0");
    EXPECT_EQ(recommended(2, 16 * gigabyte, 20e9), "tiny-q8_0");
    EXPECT_EQ(recommended(1, gigabyte / 4, 1e9), "tiny-q8_0") << "something, even if it's slow";
}

TEST(Machine, ofNoModelsNoneIsRecommended) {
    EXPECT_FALSE(recommendedModel(SpeechModelCatalogue::parse("it", R"({"models": []})"), Machine{}));
}

}  // namespace
