// Sounds made by arithmetic, for tests that must know what is where.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace korvane::sound {

inline constexpr int rateHz = 16000;

inline double amplitude(double db) {
    return std::pow(10.0, db / 20.0);
}

/// White noise; the level is that of its root mean square.
class Noise {
  public:
    explicit Noise(double db) : amplitude_(amplitude(db)) {}
    float next() { return static_cast<float>(amplitude_ * distribution_(random_)); }

  private:
    double amplitude_;
    std::mt19937 random_{7};
    std::normal_distribution<double> distribution_;
};

/// Seconds over a steady background, with voices laid over it afterwards.
inline std::vector<float> background(double seconds, double db) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * rateHz));
    Noise noise(db);
    for (auto& sample : samples)
        sample = noise.next();
    return samples;
}

/// What speech looks like to a level meter: syllables of 0.2 s with dips of 40 ms between them.
inline void addVoice(std::vector<float>& samples, double from, double to, double db) {
    const double peak = amplitude(db) * std::numbers::sqrt2;
    const auto end = static_cast<std::size_t>(std::lround(to * rateHz));
    for (auto i = static_cast<std::size_t>(std::lround(from * rateHz)); i < end; ++i) {
        const double t = static_cast<double>(i) / rateHz;
        const bool isDip = end - i > static_cast<std::size_t>(rateHz) / 20 && std::fmod(t - from, 0.2) > 0.16;
        samples[i] +=
            static_cast<float>((isDip ? 0.003 : 1.0) * peak * std::sin(2.0 * std::numbers::pi * 440.0 * t));
    }
}

inline std::vector<float> tone(double seconds, double hz, double db) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * rateHz));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            static_cast<float>(amplitude(db) * std::numbers::sqrt2 *
                               std::sin(2.0 * std::numbers::pi * hz * static_cast<double>(i) / rateHz));
    return samples;
}

/// Chords of plucked strings, one after the other without a rest.
inline std::vector<float> music(double seconds, double db) {
    constexpr double chords[][3] = {{220.0, 261.6, 329.6}, {174.6, 220.0, 261.6}, {196.0, 246.9, 293.7}};
    constexpr double beat = 0.5;
    std::vector<float> samples(static_cast<std::size_t>(seconds * rateHz));
    double sum = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / rateHz;
        const auto& chord = chords[static_cast<std::size_t>(t / (4 * beat)) % 3];
        const double decay = std::exp(-2.0 * std::fmod(t, beat));
        for (const double pitch : chord)
            for (int harmonic = 1; harmonic <= 6; ++harmonic)
                samples[i] += static_cast<float>(decay / harmonic *
                                                 std::sin(2.0 * std::numbers::pi * pitch * harmonic * t));
        sum += static_cast<double>(samples[i]) * samples[i];
    }
    const double gain = amplitude(db) / std::sqrt(sum / static_cast<double>(samples.size()));
    for (auto& sample : samples)
        sample = static_cast<float>(sample * gain);
    return samples;
}

}  // namespace korvane::sound
