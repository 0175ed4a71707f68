// Recordings of synthetic speech with known text, made on the spot.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace korvane {

inline constexpr int spokenRateHz = 16000;

/// Samples as a WAV file of one channel.
inline std::filesystem::path writeWav(const TemporaryFolder& folder, const std::string& name,
                                      const std::vector<std::int16_t>& samples) {
    const auto little = [](std::uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> (8 * i) & 0xFF);
        return text;
    };
    const auto size = static_cast<std::uint32_t>(samples.size() * 2);
    std::string bytes = "RIFF" + little(36 + size, 4) + "WAVEfmt " + little(16, 4) + little(1, 2) +
                        little(1, 2) + little(spokenRateHz, 4) + little(2 * spokenRateHz, 4) + little(2, 2) +
                        little(16, 2) + "data" + little(size, 4);
    for (const auto sample : samples)
        bytes += little(static_cast<std::uint16_t>(sample), 2);
    return folder.file(name, bytes);
}

/// What flite's voice "rms" makes of a text, 16 kHz. \throws when flite isn't installed.
inline std::vector<std::int16_t> speak(const TemporaryFolder& folder, const std::string& text) {
    const auto words = folder.file("say.txt", text);
    const auto wav = folder.path() / "said.wav";
    const auto command = "flite -voice rms -f '" + words.string() + "' -o '" + wav.string() + "'";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("flite can't speak; install the package flite");
    std::ifstream file(wav, std::ios::binary);
    std::ostringstream all;
    all << file.rdbuf();
    const auto bytes = all.str();
    std::vector<std::int16_t> samples;
    for (std::size_t i = 44; i + 1 < bytes.size(); i += 2)
        samples.push_back(static_cast<std::int16_t>(static_cast<unsigned char>(bytes[i]) |
                                                    static_cast<unsigned char>(bytes[i + 1]) << 8));
    return samples;
}

}  // namespace korvane
