#include "platform/models/Machine.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <chrono>

#include "tests/support/TemporaryFolder.h"

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

/// What a kernel would say of the control groups, in a folder.
struct Groups {
    TemporaryFolder folder;
    Groups(const std::string& own) { folder.file("proc/self/cgroup", "12:cpuset:/elsewhere\n" + own); }
    void say(const std::string& name, const std::string& text) { folder.file("groups/" + name, text + "\n"); }
    ResourceLimits limits() const {
        return controlGroupLimits(folder.path() / "proc", folder.path() / "groups");
    }
};

TEST(ControlGroup, withoutGroupsOrNumbersThereAreNoLimits) {
    for (const std::string own : {"", "0::/\n", "0::/a/b\n", "0::/../../other\n", "nonsense"}) {
        Groups groups(own);
        groups.say("memory.max", "max");
        groups.say("a/cpu.max", "max 100000");
        groups.say("a/b/cpu.max", "lots");
        EXPECT_FALSE(groups.limits().memoryBytes) << own;
        EXPECT_FALSE(groups.limits().processors) << own;
    }
}

TEST(ControlGroup, aContainersOwnLimitsCount) {
    Groups groups("0::/\n");
    groups.say("memory.max", "2147483648");
    groups.say("cpu.max", "150000 100000");
    EXPECT_EQ(groups.limits().memoryBytes, 2147483648U);
    EXPECT_EQ(groups.limits().processors, 1.5);
}

TEST(ControlGroup, theTightestOfTheOwnAndTheParentsCounts) {
    Groups groups("0::/user.slice/app.scope\n");
    groups.say("user.slice/app.scope/memory.max", "4000");
    groups.say("user.slice/memory.max", "3000");
    groups.say("user.slice/memory.high", "max");
    groups.say("memory.max", "9000");
    groups.say("user.slice/app.scope/cpu.max", "50000 100000");
    groups.say("user.slice/cpu.max", "400000 100000");
    groups.say("other.slice/memory.max", "1");
    EXPECT_EQ(groups.limits().memoryBytes, 3000U);
    EXPECT_EQ(groups.limits().processors, 0.5);
    groups.say("user.slice/app.scope/memory.high", "2000");
    EXPECT_EQ(groups.limits().memoryBytes, 2000U);
}

TEST(ControlGroup, beyondWhatAContainerSeesTheMountedOneCounts) {
    Groups groups("0::/../../pods/7\n");
    groups.say("memory.max", "5000");
    EXPECT_EQ(groups.limits().memoryBytes, 5000U);
}

TEST(Machine, isNoLargerThanItsLimits) {
    int threads = 0;
    const auto measure = [&](int count) {
        threads = count;
        return 10e9 * count;
    };
    const Machine whole = Machine::within({}, 8, 16 * gigabyte, measure);
    EXPECT_EQ(threads, 8);
    EXPECT_EQ(whole.memoryBytes, 16 * gigabyte);
    EXPECT_DOUBLE_EQ(whole.operationsPerSecond, 80e9);

    const Machine part =
        Machine::within({.memoryBytes = 2 * gigabyte, .processors = 2.5}, 8, 16 * gigabyte, measure);
    EXPECT_EQ(threads, 3) << "what a thread does is measured with as many as will run";
    EXPECT_EQ(part.cores, 3);
    EXPECT_EQ(part.memoryBytes, 2 * gigabyte);
    EXPECT_DOUBLE_EQ(part.operationsPerSecond, 25e9);

    const Machine little = Machine::within({.memoryBytes = {}, .processors = 0.25}, 8, gigabyte, measure);
    EXPECT_EQ(little.cores, 1);
    EXPECT_DOUBLE_EQ(little.operationsPerSecond, 2.5e9);

    const Machine roomy =
        Machine::within({.memoryBytes = 99 * gigabyte, .processors = 64}, 2, gigabyte, measure);
    EXPECT_EQ(roomy.cores, 2);
    EXPECT_EQ(roomy.memoryBytes, gigabyte);
}

TEST(Machine, hasTheCoresThatThisProcessMayRunOn) {
    cpu_set_t allowed;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    EXPECT_LE(Machine::here().cores, CPU_COUNT(&allowed));
    EXPECT_LE(Machine::usableMemoryBytes(), Machine::here().memoryBytes);
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
