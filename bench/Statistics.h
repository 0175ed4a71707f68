// Medians and spreads of a few repetitions.
#pragma once

#include <algorithm>
#include <vector>

namespace korvane::bench {

struct Summary {
    double median = 0.0;
    double least = 0.0;
    double most = 0.0;
};

/// \param values  at least one
inline Summary summarize(std::vector<double> values) {
    std::ranges::sort(values);
    const std::size_t n = values.size();
    return {(values[(n - 1) / 2] + values[n / 2]) / 2.0, values.front(), values.back()};
}

}  // namespace korvane::bench
