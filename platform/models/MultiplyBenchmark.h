// How many multiplications and additions this machine does in a second.
#pragma once

namespace korvane {

/// All of `threads` at once for some 20 ms each, with the widest instructions that the processor has, on
/// numbers in its first-level cache. \return operations per second of all together.
double measureMultiplications(int threads);

}  // namespace korvane
