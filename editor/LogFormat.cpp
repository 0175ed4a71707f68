#include "editor/LogFormat.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace korvane {
namespace {

/// Fits the longest fixed form printed here: 17 digits behind "-0.000".
using DigitBuffer = std::array<char, 64>;

template <class Float>
std::string digits(Float value, std::chars_format format) {
    DigitBuffer buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format);
    return {buffer.data(), written.ptr};
}

template <class Float>
std::string shortestDecimal(Float value) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";

    const Float magnitude = std::abs(value);
    const Float lastExactWhole = std::ldexp(Float{1}, std::numeric_limits<Float>::digits);
    const bool tooSmall = magnitude != 0 && magnitude < static_cast<Float>(1e-4);
    if (tooSmall || magnitude > lastExactWhole)
        return digits(value, std::chars_format::scientific);

    std::string text = digits(value, std::chars_format::fixed);
    return text.find('.') == std::string::npos ? text + ".0" : text;
}

}  // namespace

std::string formatDecimal(double value) {
    return shortestDecimal(value);
}

std::string formatDecimal(float value) {
    return shortestDecimal(value);
}

std::string formatSeconds(MediaTime time) {
    return formatDecimal(time.seconds());
}

std::string formatSize(Size size) {
    std::string text = "(";  // g++ 12 warns wrongly about "(" + a temporary string
    text += formatDecimal(size.width) + ", " + formatDecimal(size.height) + ")";
    return text;
}

std::string formatTransform(const AffineTransform& transform) {
    std::string text = "[";
    for (const double number :
         {transform.a, transform.b, transform.c, transform.d, transform.tx, transform.ty})
        text.append(text.size() > 1 ? ", " : "").append(formatDecimal(number));
    return text + "]";
}

std::string formatBool(bool value) {
    return value ? "true" : "false";
}

std::string formatStringList(const std::vector<std::string>& strings) {
    std::string text = "[";
    for (const std::string& string : strings)
        text += (text.size() > 1 ? ", \"" : "\"") + string + "\"";
    return text + "]";
}

std::string describeError(const std::exception_ptr& error) {
    if (!error)
        return "unknown error";
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return known.what();
    } catch (...) {
        return "unknown error";
    }
}

}  // namespace korvane
