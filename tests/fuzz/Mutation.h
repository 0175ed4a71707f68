// Damages bytes the way bad transfers, dying cards and careless editors do. Deterministic for a seed.
#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace korvane::fuzz {

using Random = std::mt19937;

/// A damaged copy: bits flipped, stretches overwritten, moved, repeated or taken out, ends cut off, length
/// fields given extreme values; several of these at once.
std::string mutated(std::string bytes, Random& random);

}  // namespace korvane::fuzz
