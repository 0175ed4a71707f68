#include "platform/models/MultiplyBenchmark.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <thread>
#include <vector>

namespace korvane {
namespace {

constexpr int lanes = 16;
constexpr int accumulators = 8;
constexpr int depth = 64;
constexpr double operationsPerRound = 2.0 * lanes * accumulators * depth;

typedef float Lanes __attribute__((vector_size(lanes * sizeof(float)), aligned(alignof(float))));

// The heart of a matrix product: a few results stay in registers while columns pass by. The compiler makes it
// once for each width of instructions, and the loader takes the one that fits the processor. Not under
// sanitizers: the loader asks before they are set up, and g++ 12 aligns wide registers wrongly on their stack
// (GCC bug 110027).
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
__attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default"), noinline))
#else
__attribute__((noinline))
#endif
void productRound(const float* row, const float* column, float* results) {
    Lanes sums[accumulators];
    std::memcpy(sums, results, sizeof(sums));
    for (int i = 0; i < depth; ++i) {
        Lanes values;
        std::memcpy(&values, row + i * lanes, sizeof(values));
        for (int j = 0; j < accumulators; ++j)
            sums[j] += values * column[i * accumulators + j];
    }
    std::memcpy(results, sums, sizeof(sums));
}

double measureOne(std::chrono::milliseconds time) {
    std::vector<float> row(depth * lanes, 1e-3F);
    std::vector<float> column(depth * accumulators, 1e-3F);
    std::vector<float> results(accumulators * lanes, 0.0F);
    const auto start = std::chrono::steady_clock::now();
    double best = 0;
    // In slices, of which the best counts: another program may take the core away in between.
    for (auto now = start; now - start < time;) {
        constexpr int rounds = 400;
        for (int i = 0; i < rounds; ++i)
            productRound(row.data(), column.data(), results.data());
        const auto after = std::chrono::steady_clock::now();
        const std::chrono::duration<double> took = after - now;
        best = std::max(best, rounds * operationsPerRound / std::max(took.count(), 1e-9));
        now = after;
    }
    // Used, so that none of it is left out.
    static std::atomic<float> sink;
    sink.store(results[0], std::memory_order_relaxed);
    return best;
}

}  // namespace

double measureMultiplications(int threads) {
    constexpr std::chrono::milliseconds time{20};
    std::vector<double> found(static_cast<std::size_t>(std::max(threads, 1)), 0.0);
    std::vector<std::jthread> workers;
    for (auto& one : found)
        workers.emplace_back([&one] { one = measureOne(time); });
    workers.clear();
    double sum = 0;
    for (const double one : found)
        sum += one;
    return sum;
}

}  // namespace korvane
