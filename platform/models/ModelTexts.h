// What a person reads of models, on the screen and in a terminal alike.
#pragma once

#include <cstdint>
#include <string>

namespace korvane {

/// "82 MB", "1.2 GB": decimal, as shops and file managers count.
std::string byteText(std::uint64_t bytes);

/// "about 4 times faster than the speech", "about as fast as the speech", "takes about 3 times as long as the
/// speech". \param speed  seconds of sound in one second.
std::string speedText(double speed);

/// "4.2 MB/s", "310 kB/s".
std::string rateText(double bytesPerSecond);

/// "42 s left", "3 min 7 s left", "1 h 5 min left".
std::string timeLeftText(double seconds);

}  // namespace korvane
