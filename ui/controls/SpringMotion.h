// A damped spring as arithmetic: where a point is some seconds after it was let go. Holds no clock; any
// thread.
#pragma once

namespace korvane {

/// x'' + 2 ζ ω x' + ω² x = 0 about a target at 0, with ω = 2π / response and ζ = damping; solved exactly for
/// every ζ.
class SpringMotion {
  public:
    struct State {
        double position;  ///< from the target
        double velocity;  ///< per second
    };

    /// \param response  seconds of one swing were it undamped, > 0.
    /// \param damping   fraction of the critical damping, >= 0: below 1 it overshoots, at 1 it does not.
    SpringMotion(double response, double damping);

    /// \param seconds  after `start`, >= 0.
    State after(const State& start, double seconds) const;

    /// True once the point never leaves [-tolerance, tolerance] again by more than a whisker.
    bool isSettled(const State& state, double tolerance) const;

  private:
    State underdamped(const State& start, double seconds) const;
    State critical(const State& start, double seconds) const;
    State overdamped(const State& start, double seconds) const;

    double omega_;
    double zeta_;
};

}  // namespace korvane
