// What a Whisper model file says of itself: its shape, and whether it is whole. Reads the ggml form that
// whisper.cpp's converter writes: header, mel filters, vocabulary, and the tensors one behind the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace korvane {

struct WhisperModelShape {
    int vocabulary = 0;
    int audioContext = 0;  ///< positions of a window of 30 s
    int audioState = 0;
    int audioLayers = 0;
    int textContext = 0;
    int textState = 0;
    int textLayers = 0;
    int mels = 0;
    std::uint64_t fileBytes = 0;

    /// English-only models have one token less, that of the language.
    bool multilingual() const { return vocabulary >= 51865; }

    /// What recognition takes at its peak: the weights, and what is computed with them.
    std::uint64_t memoryBytes() const;
    /// Multiplications and additions for a second of speech.
    double operationsPerSecond() const;
};

/// Whether a file that begins with these bytes can be a model at all. However few, they are the first.
bool beginsLikeAModel(std::span<const std::byte> bytes);

/// Walks through the whole file without reading the weights; some milliseconds.
/// \throws ModelError saying what is wrong: no file, no Whisper model, another form of it, cut off, damaged.
WhisperModelShape readWhisperModel(const std::filesystem::path& file);

}  // namespace korvane
