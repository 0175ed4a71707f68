#include "platform/models/WhisperModelFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <system_error>

#include "platform/models/FileHandle.h"
#include "platform/models/ModelError.h"

namespace korvane {
namespace {

// Numbers in the file are little-endian, and so is every machine this program is built for.
constexpr std::uint32_t magic = 0x67676d6c;
constexpr int fftBins = 201;
// Positions of the decoder; what the model was trained with, and ggml's padding of it.
constexpr double paddedTextContext = 512;
constexpr double paddedAudioContext = 1536;

std::string nameOf(const std::filesystem::path& file) {
    return "\"" + file.filename().string() + "\"";
}

[[noreturn]] void foreign(const std::filesystem::path& file) {
    throw ModelError(nameOf(file) + " is not a Whisper model in the ggml form.");
}

/// Reads forward through a file with a buffer, and skips without reading.
class Walk {
  public:
    explicit Walk(const std::filesystem::path& file) : file_(file), handle_(openForReading(file)) {
        bytes_ = handle_.regularFileBytes(file);
    }

    std::uint64_t bytes() const { return bytes_; }
    std::uint64_t left() const { return bytes_ - position_; }

    /// \throws ModelError at the end of the file.
    template <class T>
    T next() {
        T value{};
        std::array<char, sizeof(T)> raw{};
        for (std::size_t got = 0; got < raw.size();) {
            const std::size_t some = std::min(raw.size() - got, buffered());
            std::memcpy(raw.data() + got, buffer_.data() + (position_ - bufferStart_), some);
            got += some;
            position_ += some;
        }
        std::memcpy(&value, raw.data(), sizeof(T));
        return value;
    }

    void skip(std::uint64_t count) {
        if (count > left())
            cutOff();
        position_ += count;
    }

    [[noreturn]] void cutOff() const {
        throw ModelError(nameOf(file_) + " is cut off: it isn't all of a model.");
    }
    [[noreturn]] void damaged() const { throw ModelError(nameOf(file_) + " is damaged."); }

  private:
    /// How many bytes are at hand from the position on; at least one.
    std::size_t buffered() {
        if (position_ >= bytes_)
            cutOff();
        if (position_ < bufferStart_ || position_ >= bufferStart_ + filled_) {
            bufferStart_ = position_;
            filled_ = handle_.readAt(buffer_.data(), buffer_.size(), position_, file_);
            if (filled_ == 0)
                cutOff();
        }
        return static_cast<std::size_t>(bufferStart_ + filled_ - position_);
    }

    std::filesystem::path file_;
    FileHandle handle_;
    std::uint64_t bytes_ = 0;
    std::uint64_t position_ = 0;
    std::uint64_t bufferStart_ = 0;
    std::uint64_t filled_ = 0;
    std::array<char, 16384> buffer_{};
};

/// How a type of weights lies in the file: so many bytes for so many numbers.
struct Packing {
    std::uint64_t bytes;
    std::uint64_t numbers;
};

std::optional<Packing> packingOf(std::int32_t type) {
    switch (type) {
        case 0:  // 32 bits
            return Packing{4, 1};
        case 1:   // 16 bits
        case 30:  // 16 bits with the range of 32
            return Packing{2, 1};
        case 2:  // 4 bits and a scale; with an offset; 5 bits; 8 bits
            return Packing{18, 32};
        case 3:
            return Packing{20, 32};
        case 6:
            return Packing{22, 32};
        case 7:
            return Packing{24, 32};
        case 8:
            return Packing{34, 32};
        case 10:  // 2 to 6 bits with scales of scales
            return Packing{84, 256};
        case 11:
            return Packing{110, 256};
        case 12:
            return Packing{144, 256};
        case 13:
            return Packing{176, 256};
        case 14:
            return Packing{210, 256};
        default:
            return std::nullopt;
    }
}

bool within(int value, int least, int most) {
    return value >= least && value <= most;
}

WhisperModelShape readShape(Walk& walk, const std::filesystem::path& file) {
    if (walk.bytes() < 4 || walk.next<std::uint32_t>() != magic)
        foreign(file);
    if (walk.left() < 11 * 4)
        walk.cutOff();
    WhisperModelShape shape;
    shape.fileBytes = walk.bytes();
    shape.vocabulary = walk.next<std::int32_t>();
    shape.audioContext = walk.next<std::int32_t>();
    shape.audioState = walk.next<std::int32_t>();
    const auto audioHeads = walk.next<std::int32_t>();
    shape.audioLayers = walk.next<std::int32_t>();
    shape.textContext = walk.next<std::int32_t>();
    shape.textState = walk.next<std::int32_t>();
    const auto textHeads = walk.next<std::int32_t>();
    shape.textLayers = walk.next<std::int32_t>();
    shape.mels = walk.next<std::int32_t>();
    walk.next<std::int32_t>();  // the type of most weights; each tensor says its own
    // Other models of speech and text begin with the same four bytes.
    const bool whisper = within(shape.vocabulary, 50000, 60000) && within(shape.audioContext, 1, 10000) &&
                         within(shape.audioState, 1, 10000) && within(audioHeads, 1, 1000) &&
                         within(shape.audioLayers, 1, 1000) && within(shape.textContext, 1, 10000) &&
                         within(shape.textState, 1, 10000) && within(textHeads, 1, 1000) &&
                         within(shape.textLayers, 1, 1000) && within(shape.mels, 1, 1000);
    if (!whisper)
        foreign(file);
    return shape;
}

void skipFilters(Walk& walk, const WhisperModelShape& shape) {
    const auto mels = walk.next<std::int32_t>();
    const auto bins = walk.next<std::int32_t>();
    if (mels != shape.mels || bins != fftBins)
        walk.damaged();
    walk.skip(static_cast<std::uint64_t>(mels) * fftBins * sizeof(float));
}

void skipVocabulary(Walk& walk, const WhisperModelShape& shape) {
    const auto count = walk.next<std::int32_t>();
    if (!within(count, 1, shape.vocabulary))
        walk.damaged();
    for (std::int32_t i = 0; i < count; ++i)
        walk.skip(walk.next<std::uint32_t>());
}

void skipTensor(Walk& walk, const std::filesystem::path& file) {
    const auto dimensions = walk.next<std::int32_t>();
    const auto nameLength = walk.next<std::int32_t>();
    const auto type = walk.next<std::int32_t>();
    if (!within(dimensions, 1, 4) || !within(nameLength, 1, 200))
        walk.damaged();
    const auto packing = packingOf(type);
    if (!packing)
        throw ModelError(nameOf(file) + " has weights of a kind that this program doesn't know.");
    std::uint64_t numbers = 1;
    for (std::int32_t i = 0; i < dimensions; ++i) {
        const auto length = walk.next<std::int32_t>();
        if (!within(length, 1, 1 << 24))
            walk.damaged();
        numbers *= static_cast<std::uint64_t>(length);
        if (numbers > (std::uint64_t{1} << 40))
            walk.damaged();
    }
    if (numbers % packing->numbers != 0)
        walk.damaged();
    walk.skip(static_cast<std::uint64_t>(nameLength));
    walk.skip(numbers / packing->numbers * packing->bytes);
}

/// Of the encoder, the decoder, and each of their layers.
int tensorCount(const WhisperModelShape& shape) {
    return 7 + 15 * shape.audioLayers + 4 + 24 * shape.textLayers;
}

}  // namespace

std::uint64_t WhisperModelShape::memoryBytes() const {
    const double textSize = static_cast<double>(textState) * textLayers;
    // 16 bits each for keys and values. Five decoders at once when the first guess isn't good enough.
    const double ownKeys = paddedTextContext * textSize * 4 * 5;
    const double soundKeys = paddedAudioContext * textSize * 4;
    // Attention of all heads (of 64 numbers each) over the window at 32 bits, which is what the library's
    // encoder needs where the times of words forbid it the frugal way, and a third more beside it.
    const double attention = audioState / 64.0 * audioContext * audioContext * 4 * 1.3;
    // The first layers, the words' probabilities, the process and its libraries. Altogether a little more
    // than was measured with models of the published shapes: 190 MB for tiny, 276 MB for base, 579 MB for
    // small, at 8 bits and with one decoder.
    const double rest = 130e6;
    return fileBytes + static_cast<std::uint64_t>(ownKeys + soundKeys + attention + rest);
}

double WhisperModelShape::operationsPerSecond() const {
    const double width = audioState;
    const double positions = audioContext;
    // The encoder sees a window of 30 s at once: the layers' weights (12 squares of the width), attention,
    // and the two convolutions before them.
    const double encoder = 2 * 12 * width * width * audioLayers * positions +
                           4 * positions * positions * width * audioLayers +
                           2 * (3 * mels * width * 2 * positions + 3 * width * width * positions);
    const double textWidth = textState;
    const double soundKeys = 4 * textWidth * textWidth * positions * textLayers;
    // The decoder makes one token at a time, some 180 in a window of dense speech. Measured, an operation of
    // it takes twice as long as one of the encoder: it waits for the memory.
    const double token = 2 * (14 * textWidth * textWidth * textLayers + vocabulary * textWidth);
    const double decoder = 180 * 2 * token;
    return (encoder + soundKeys + decoder) / 30;
}

bool beginsLikeAModel(std::span<const std::byte> bytes) {
    return std::memcmp(bytes.data(), &magic, std::min(bytes.size(), sizeof(magic))) == 0;
}

WhisperModelShape readWhisperModel(const std::filesystem::path& file) {
    Walk walk(file);
    const auto shape = readShape(walk, file);
    skipFilters(walk, shape);
    skipVocabulary(walk, shape);
    for (int i = 0; i < tensorCount(shape); ++i)
        skipTensor(walk, file);
    if (walk.left() != 0)
        walk.damaged();
    return shape;
}

}  // namespace korvane
