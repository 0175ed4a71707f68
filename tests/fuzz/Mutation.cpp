#include "tests/fuzz/Mutation.h"

#include <algorithm>
#include <array>

namespace korvane::fuzz {
namespace {

std::size_t below(Random& random, std::size_t limit) {
    return limit == 0 ? 0 : random() % limit;
}

void flipBits(std::string& bytes, Random& random) {
    for (std::size_t i = 0, n = 1 + below(random, 40); i < n && !bytes.empty(); ++i)
        bytes[below(random, bytes.size())] ^= static_cast<char>(1U << below(random, 8));
}

/// A number where a length, a count or a time may stand, as the edge of what its field can hold.
void plantExtreme(std::string& bytes, Random& random) {
    constexpr std::array<std::uint32_t, 8> kExtremes{0,          1,          0x7F,       0xFF,
                                                     0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10000};
    if (bytes.size() < 4)
        return;
    const std::uint32_t value = kExtremes[below(random, kExtremes.size())];
    const std::size_t at = below(random, bytes.size() - 3);
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (24 - 8 * i));
}

void moveStretch(std::string& bytes, Random& random) {
    const std::size_t from = below(random, bytes.size());
    const std::size_t length = below(random, std::min<std::size_t>(4096, bytes.size() - from));
    const std::string stretch = bytes.substr(from, length);
    if (random() % 2 == 0)
        bytes.erase(from, length);
    if (random() % 3 != 0)
        bytes.insert(below(random, bytes.size() + 1), stretch);
}

void overwrite(std::string& bytes, Random& random) {
    const std::size_t from = below(random, bytes.size());
    const std::size_t length = below(random, std::min<std::size_t>(2048, bytes.size() - from));
    const bool noise = random() % 2 == 0;
    for (std::size_t i = 0; i < length; ++i)
        bytes[from + i] = noise ? static_cast<char>(random()) : '\0';
}

}  // namespace

std::string mutated(std::string bytes, Random& random) {
    for (std::size_t i = 0, n = 1 + below(random, 4); i < n && !bytes.empty(); ++i) {
        switch (random() % 6) {
            case 0:
                bytes.resize(below(random, bytes.size()) + 1);
                break;
            case 1:
                moveStretch(bytes, random);
                break;
            case 2:
                overwrite(bytes, random);
                break;
            case 3:
            case 4:
                plantExtreme(bytes, random);
                break;
            case 5:
                flipBits(bytes, random);
                break;
        }
    }
    return bytes;
}

}  // namespace korvane::fuzz
