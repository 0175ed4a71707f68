// A model for speech recognition as it is known before anything is downloaded.
#pragma once

#include <cstdint>
#include <string>

namespace korvane {

struct SpeechModel {
    std::string id;                  ///< "base-q8_0"; letters, digits, '-', '.' and '_' only
    std::string name;                ///< as a person reads it: "Whisper base"
    std::string fileName;            ///< "ggml-base-q8_0.bin"; no folders in it
    std::string address;             ///< http or https
    std::string sha256;              ///< 64 hexadecimal digits, lower case
    std::uint64_t bytes = 0;         ///< of the file, exactly
    std::uint64_t memoryBytes = 0;   ///< that recognition needs at its peak
    double operationsPerSecond = 0;  ///< multiplications and additions for a second of sound
    bool offered = true;             ///< false: known by its digest when a person has the file, not offered
};

}  // namespace korvane
