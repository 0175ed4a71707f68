#include "SpringMotion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvane {

namespace {

// The same law, integrated in small steps by the classical fourth-order rule.
SpringMotion::State integrated(double response, double damping, SpringMotion::State state, double seconds) {
    const double omega = 2 * std::numbers::pi / response;
    const auto rate = [&](const SpringMotion::State& s) {
        return SpringMotion::State{s.velocity,
                                   -2 * damping * omega * s.velocity - omega * omega * s.position};
    };
    const auto ahead = [](const SpringMotion::State& s, const SpringMotion::State& r, double dt) {
        return SpringMotion::State{s.position + dt * r.position, s.velocity + dt * r.velocity};
    };
    const int steps = 4000;
    const double dt = seconds / steps;
    for (int i = 0; i < steps; ++i) {
        const auto a = rate(state);
        const auto b = rate(ahead(state, a, dt / 2));
        const auto c = rate(ahead(state, b, dt / 2));
        const auto d = rate(ahead(state, c, dt));
        state.position += dt / 6 * (a.position + 2 * b.position + 2 * c.position + d.position);
        state.velocity += dt / 6 * (a.velocity + 2 * b.velocity + 2 * c.velocity + d.velocity);
    }
    return state;
}

}  // namespace

TEST(SpringMotion, agreesWithNumericIntegrationForEveryDamping) {
    for (const double response : {0.18, 0.35, 1.0}) {
        for (const double damping : {0.0, 0.2, 0.45, 0.75, 0.99, 0.99999, 1.0, 1.00001, 1.01, 1.5, 4.0}) {
            for (const SpringMotion::State start :
                 {SpringMotion::State{1, 0}, {-1, 8}, {0, 5}, {0.04, -20}}) {
                for (const double seconds : {0.016, 0.1, 0.4}) {
                    const auto exact = SpringMotion(response, damping).after(start, seconds);
                    const auto stepped = integrated(response, damping, start, seconds);
                    EXPECT_NEAR(exact.position, stepped.position, 2e-5)
                        << response << ' ' << damping << ' ' << seconds;
                    EXPECT_NEAR(exact.velocity, stepped.velocity, 1e-3)
                        << response << ' ' << damping << ' ' << seconds;
                }
            }
        }
    }
}

TEST(SpringMotion, atTimeZeroIsWhereItWas) {
    for (const double damping : {0.45, 1.0, 2.0}) {
        const auto state = SpringMotion(0.35, damping).after({-0.22, 3}, 0);
        EXPECT_NEAR(state.position, -0.22, 1e-12);
        EXPECT_NEAR(state.velocity, 3, 1e-12);
    }
}

// A spring let go at rest first overshoots by exp(-πζ / √(1 - ζ²)) of its way.
TEST(SpringMotion, overshootsAsMuchAsItsDampingSays) {
    const struct {
        double response, damping, overshoot;
    } pairs[] = {{0.18, 0.75, 0.0284}, {0.35, 0.45, 0.2054}};
    for (const auto& [response, damping, overshoot] : pairs) {
        double lowest = 1;
        for (int ms = 0; ms < 1000; ++ms) {
            lowest = std::min(lowest, SpringMotion(response, damping).after({1, 0}, ms / 1000.0).position);
        }
        EXPECT_NEAR(-lowest, overshoot, 0.0005) << response;
    }
}

TEST(SpringMotion, isSettledOnlyWhenSlowAndNear) {
    const SpringMotion spring(0.35, 0.45);
    EXPECT_TRUE(spring.isSettled({0, 0}, 0.001));
    EXPECT_FALSE(spring.isSettled({0, 1}, 0.001));
    EXPECT_FALSE(spring.isSettled({0.002, 0}, 0.001));
}

}  // namespace korvane
