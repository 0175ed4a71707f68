#include "platform/ffmpeg/ContainerStructure.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>
#include <string_view>

namespace korvane {
namespace {

std::uint64_t bigEndian(const unsigned char* bytes, int count) {
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | bytes[i];
    return value;
}

/// Calls visit(type, end) for each outermost box (ISO/IEC 14496-12, 4.2); stops when it returns false.
template <class Visit>
void forEachIsoBox(std::ifstream& file, std::uint64_t fileSize, Visit visit) {
    std::uint64_t position = 0;
    while (position + 8 <= fileSize) {
        std::array<unsigned char, 16> header{};
        file.clear();
        file.seekg(static_cast<std::streamoff>(position));
        file.read(reinterpret_cast<char*>(header.data()), header.size());
        if (file.gcount() < 8)
            return;
        std::uint64_t size = bigEndian(header.data(), 4);
        if (size == 1 && file.gcount() == 16)
            size = bigEndian(header.data() + 8, 8);
        if (size == 0)
            size = fileSize - position;  // to the end of the file
        if (size < 8 || position + size < position)
            return;
        const std::string_view type(reinterpret_cast<const char*>(header.data()) + 4, 4);
        if (!visit(type, position + size))
            return;
        position += size;
    }
}

/// An EBML variable-length size at `bytes`; none when it is the reserved "unknown".
std::optional<std::uint64_t> ebmlSize(const unsigned char* bytes, int available, int& length) {
    length = 1;
    while (length <= 8 && !(bytes[0] & (0x80 >> (length - 1))))
        ++length;
    if (length > 8 || length > available)
        return std::nullopt;
    std::uint64_t value = bytes[0] & (0xFF >> length);
    bool unknown = value == static_cast<std::uint64_t>(0xFF >> length);
    for (int i = 1; i < length; ++i) {
        value = value << 8 | bytes[i];
        unknown = unknown && bytes[i] == 0xFF;
    }
    if (unknown)
        return std::nullopt;
    return value;
}

bool matroskaReachesBeyondEnd(std::ifstream& file, std::uint64_t fileSize) {
    std::array<unsigned char, 256> head{};
    file.seekg(0);
    file.read(reinterpret_cast<char*>(head.data()), head.size());
    const int available = static_cast<int>(file.gcount());
    file.clear();
    int length = 0;
    const auto headerSize = ebmlSize(head.data() + 4, available - 4, length);
    if (!headerSize || *headerSize > head.size())
        return false;
    const int segment = 4 + length + static_cast<int>(*headerSize);
    if (segment + 12 > available || bigEndian(head.data() + segment, 4) != 0x18538067)
        return false;
    const auto segmentSize = ebmlSize(head.data() + segment + 4, available - segment - 4, length);
    return segmentSize &&
           static_cast<std::uint64_t>(segment) + 4 + static_cast<std::uint64_t>(length) + *segmentSize >
               fileSize;
}

}  // namespace

bool structureReachesBeyondEnd(const std::filesystem::path& path) {
    std::error_code error;
    const std::uint64_t fileSize = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    std::array<unsigned char, 12> head{};
    if (error || !file.read(reinterpret_cast<char*>(head.data()), head.size()))
        return false;
    if (bigEndian(head.data(), 4) == 0x1A45DFA3)
        return matroskaReachesBeyondEnd(file, fileSize);
    if (std::memcmp(head.data(), "RIFF", 4) == 0) {
        const std::uint64_t size =
            head[4] | head[5] << 8 | head[6] << 16 | static_cast<std::uint64_t>(head[7]) << 24;
        return size + 8 > fileSize + 1;
    }
    const std::string_view first(reinterpret_cast<const char*>(head.data()) + 4, 4);
    if (first != "ftyp" && first != "styp" && first != "moov" && first != "mdat" && first != "free" &&
        first != "skip" && first != "wide")
        return false;
    bool beyond = false;
    forEachIsoBox(file, fileSize, [&](std::string_view, std::uint64_t end) {
        beyond = end > fileSize;
        return !beyond;
    });
    return beyond;
}

std::string movieIndex(const std::filesystem::path& path) {
    std::error_code error;
    const std::uint64_t fileSize = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file)
        return {};
    std::uint64_t from = 0;
    std::uint64_t to = 0;
    std::uint64_t previousEnd = 0;
    forEachIsoBox(file, fileSize, [&](std::string_view type, std::uint64_t end) {
        if (type == "moov") {
            from = previousEnd + 8;
            to = end;
        }
        previousEnd = end;
        return to == 0;
    });
    if (to == 0 || to > fileSize || to <= from)
        return {};
    std::string content(static_cast<std::size_t>(to - from), '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(from));
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return file.gcount() == static_cast<std::streamsize>(content.size()) ? content : std::string();
}

bool hasMovieFragments(const std::filesystem::path& path) {
    std::error_code error;
    const std::uint64_t fileSize = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file)
        return false;
    bool found = false;
    forEachIsoBox(file, fileSize, [&](std::string_view type, std::uint64_t) {
        found = type == "moof";
        return !found;
    });
    return found;
}

}  // namespace korvane
