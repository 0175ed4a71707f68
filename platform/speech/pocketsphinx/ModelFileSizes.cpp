#include "platform/speech/pocketsphinx/ModelFileSizes.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace korvane {
namespace {

/// Reads numbers and strings from the start of a binary file; once something is missing, everything is.
class HeaderReader {
  public:
    explicit HeaderReader(const std::filesystem::path& path) : file_(path, std::ios::binary) {
        std::error_code error;
        const auto size = std::filesystem::file_size(path, error);
        size_ = error ? 0 : static_cast<std::int64_t>(size);
    }

    /// Numbers of these files are in the byte order of the machine they were made for, little endian.
    std::optional<std::int64_t> number() {
        unsigned char bytes[4] = {};
        if (!file_.read(reinterpret_cast<char*>(bytes), 4))
            return std::nullopt;
        const auto bits = static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
                          static_cast<std::uint32_t>(bytes[2]) << 16 |
                          static_cast<std::uint32_t>(bytes[3]) << 24;
        return std::bit_cast<std::int32_t>(bits);
    }
    std::optional<std::string> text(std::int64_t length) {
        if (length < 0 || length > 100'000)
            return std::nullopt;
        std::string bytes(static_cast<std::size_t>(length), '\0');
        if (!file_.read(bytes.data(), length))
            return std::nullopt;
        return bytes;
    }
    void skip(std::int64_t bytes) { file_.seekg(bytes, std::ios::cur); }
    std::int64_t position() { return file_.tellg(); }
    std::int64_t size() const { return size_; }

  private:
    std::ifstream file_;
    std::int64_t size_ = 0;
};

std::int64_t valueOf(const std::string& line, const std::string& name, std::int64_t otherwise) {
    return line.starts_with(name + " ") ? std::strtoll(line.c_str() + name.size(), nullptr, 10) : otherwise;
}

}  // namespace

bool isCompletePhoneDefinition(const std::filesystem::path& mdef) {
    HeaderReader file(mdef);
    const auto magic = file.text(4);
    if (!magic)
        return false;
    if (*magic != "BMDF")
        return true;
    const auto version = file.number();
    const auto descriptionLength = file.number();
    if (!version || !descriptionLength || !file.text(*descriptionLength))
        return false;
    enum { basePhones, phones, emittingStates, ciSenones, senones, matrices, sequences, contexts, treeNodes };
    std::int64_t counts[10] = {};
    for (auto& count : counts) {
        const auto number = file.number();
        if (!number || *number < 0)
            return false;
        count = *number;
    }
    // The names of the base phones, each ended by a zero, then zeros up to a multiple of four.
    for (std::int64_t name = 0; name < counts[basePhones]; ++name) {
        std::optional<std::string> letter;
        while ((letter = file.text(1)) && letter->front() != '\0') {
        }
        if (!letter)
            return false;
    }
    file.skip((4 - file.position() % 4) % 4);
    file.skip(counts[treeNodes] * 8 + counts[phones] * 12);
    const auto states = file.number();
    if (!states || *states < counts[sequences])
        return false;
    const std::int64_t lengths = counts[emittingStates] > 0 ? 0 : counts[sequences];
    return file.size() >= file.position() + *states * 2 + lengths;
}

bool isCompleteMixtureDump(const std::filesystem::path& sendump) {
    HeaderReader file(sendump);
    std::int64_t features = 1, codebooks = 1, clusters = 0, bits = 8;
    for (;;) {
        const auto length = file.number();
        if (!length)
            return false;
        if (*length == 0)
            break;
        const auto line = file.text(*length);
        if (!line)
            return false;
        features = valueOf(*line, "feature_count", features);
        codebooks = valueOf(*line, "codebook_count", codebooks);
        clusters = valueOf(*line, "cluster_count", clusters);
        bits = valueOf(*line, "cluster_bits", bits);
    }
    // Clustered weights have no counts of their own here; they are a form that no model in use has.
    if (clusters > 0)
        return true;
    const auto rows = file.number();
    const auto columns = file.number();
    if (!rows || !columns || *rows <= 0 || *columns <= 0)
        return false;
    const auto rowBytes = bits == 4 ? (*columns + 1) / 2 : *columns;
    return file.size() >= file.position() + features * *rows * rowBytes;
}

}  // namespace korvane
