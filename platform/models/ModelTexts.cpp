#include "platform/models/ModelTexts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace korvane {
namespace {

/// Two digits that count: 4.2, 42, 310.
std::string brief(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), value < 9.95 ? "%.1f" : "%.0f", value);
    return text.data();
}

std::string scaled(double bytes, const std::string& ending) {
    struct Unit {
        double size;
        const char* name;
    };
    // By what is read after rounding: 999.6 MB is 1.0 GB.
    for (const auto& unit : {Unit{1e9, "GB"}, Unit{1e6, "MB"}}) {
        if (bytes / unit.size >= 0.9995)
            return brief(bytes / unit.size) + " " + unit.name + ending;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.0f kB", std::ceil(bytes / 1e3));
    return text.data() + ending;
}

}  // namespace

std::string byteText(std::uint64_t bytes) {
    return scaled(static_cast<double>(bytes), "");
}

std::string speedText(double speed) {
    if (speed >= 9.5)
        return "about " + std::to_string(std::lround(speed / 5) * 5) + " times faster than the speech";
    if (speed >= 1.5)
        return "about " + std::to_string(std::lround(speed)) + " times faster than the speech";
    if (speed > 0.67)
        return "about as fast as the speech";
    const double times = std::min(1 / std::max(speed, 1e-3), 1000.0);
    return "takes about " + std::to_string(std::lround(times)) + " times as long as the speech";
}

std::string rateText(double bytesPerSecond) {
    return scaled(std::max(bytesPerSecond, 0.0), "/s");
}

std::string timeLeftText(double seconds) {
    const auto whole = static_cast<long long>(std::ceil(std::clamp(seconds, 1.0, 360000.0)));
    if (whole < 60)
        return std::to_string(whole) + " s left";
    if (whole < 600)
        return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s left";
    if (whole < 3600)
        return std::to_string(whole / 60) + " min left";
    return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min left";
}

}  // namespace korvane
