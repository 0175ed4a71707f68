#include "platform/models/VoiceModelFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "platform/models/FileHandle.h"
#include "platform/models/ModelError.h"

namespace korvane {
namespace {

// As the library's converter writes it: the mark of all its files, then the kind with its length before it.
constexpr std::uint32_t magic = 0x67676d6c;
constexpr std::string_view kind = "silero-16k";
constexpr std::size_t headBytes = 2 * sizeof(std::uint32_t) + kind.size();
/// The one shape weighs 0.9 MB; what is much larger is another file by mistake.
constexpr std::uint64_t mostBytes = 4 << 20;

// What follows the version's three numbers: samples of a frame and of what goes before it; four layers, each
// with what comes in, what goes out, and how wide it is; the memory; the end.
constexpr std::array<std::int32_t, 19> shape{512, 64, 4,  129, 128, 3,   128, 64,  3, 64,
                                             64,  3,  64, 128, 3,   128, 128, 128, 1};

struct Tensor {
    std::int32_t type;  // 0: 32 bits, 1: 16
    std::array<std::int32_t, 4> lengths;
};

const std::map<std::string_view, Tensor>& tensors() {
    static const std::map<std::string_view, Tensor> all{
        {"_model.stft.forward_basis_buffer", {1, {256, 1, 258, 1}}},
        {"_model.encoder.0.reparam_conv.weight", {1, {3, 129, 128, 1}}},
        {"_model.encoder.0.reparam_conv.bias", {0, {128, 1, 1, 1}}},
        {"_model.encoder.1.reparam_conv.weight", {1, {3, 128, 64, 1}}},
        {"_model.encoder.1.reparam_conv.bias", {0, {64, 1, 1, 1}}},
        {"_model.encoder.2.reparam_conv.weight", {1, {3, 64, 64, 1}}},
        {"_model.encoder.2.reparam_conv.bias", {0, {64, 1, 1, 1}}},
        {"_model.encoder.3.reparam_conv.weight", {1, {3, 64, 128, 1}}},
        {"_model.encoder.3.reparam_conv.bias", {0, {128, 1, 1, 1}}},
        {"_model.decoder.rnn.weight_ih", {0, {128, 512, 1, 1}}},
        {"_model.decoder.rnn.weight_hh", {0, {128, 512, 1, 1}}},
        {"_model.decoder.rnn.bias_ih", {0, {512, 1, 1, 1}}},
        {"_model.decoder.rnn.bias_hh", {0, {512, 1, 1, 1}}},
        {"_model.decoder.decoder.2.weight", {1, {128, 1, 1, 1}}},
        {"_model.decoder.decoder.2.bias", {0, {1, 1, 1, 1}}},
    };
    return all;
}

std::string nameOf(const std::filesystem::path& file) {
    return "\"" + file.filename().string() + "\"";
}

std::string contentOf(const std::filesystem::path& file, std::size_t most) {
    const auto handle = openForReading(file);
    std::string content(std::min<std::uint64_t>(handle.regularFileBytes(file), most), '\0');
    std::size_t got = 0;
    while (got < content.size()) {
        const auto some = handle.readAt(content.data() + got, content.size() - got, got, file);
        if (some == 0)
            break;
        got += some;
    }
    content.resize(got);
    return content;
}

bool beginsAsOne(std::string_view content) {
    std::array<std::uint32_t, 2> numbers{};
    if (content.size() < headBytes)
        return false;
    std::memcpy(numbers.data(), content.data(), sizeof numbers);
    return numbers[0] == magic && numbers[1] == kind.size() &&
           content.substr(sizeof numbers).starts_with(kind);
}

/// Forward through the content.
class Walk {
  public:
    Walk(std::string_view content, std::string name) : rest_(content), name_(std::move(name)) {}

    bool isAtEnd() const { return rest_.empty(); }
    std::int32_t next() {
        std::int32_t number = 0;
        std::memcpy(&number, take(sizeof number).data(), sizeof number);
        return number;
    }
    std::string_view take(std::size_t count) {
        if (count > rest_.size())
            throw ModelError(name_ + " is cut off: it isn't all of a model.");
        const auto taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }
    void expect(bool isRight) const {
        if (!isRight)
            throw ModelError(name_ + " is damaged.");
    }

  private:
    std::string_view rest_;
    const std::string name_;
};

/// Whether none of them is infinite or no number at all. The library would hear silence in everything.
template <class Bits>
bool areNumbers(std::string_view bytes, Bits exponent) {
    for (std::size_t at = 0; at < bytes.size(); at += sizeof(Bits)) {
        Bits bits = 0;
        std::memcpy(&bits, bytes.data() + at, sizeof bits);
        if ((bits & exponent) == exponent)
            return false;
    }
    return true;
}

/// \return its name.
std::string_view skipTensor(Walk& walk) {
    const auto dimensions = walk.next();
    const auto nameLength = walk.next();
    const auto type = walk.next();
    walk.expect(dimensions >= 0 && dimensions <= 4 && nameLength > 0 && nameLength < 100);
    std::array<std::int32_t, 4> lengths{1, 1, 1, 1};
    for (std::int32_t i = 0; i < dimensions; ++i)
        lengths[static_cast<std::size_t>(i)] = walk.next();
    const auto name = walk.take(static_cast<std::size_t>(nameLength));
    const auto known = tensors().find(name);
    walk.expect(known != tensors().end() && known->second.type == type && known->second.lengths == lengths);
    std::size_t bytes = type == 0 ? 4 : 2;
    for (const auto length : lengths)
        bytes *= static_cast<std::size_t>(length);
    const auto weights = walk.take(bytes);
    walk.expect(type == 0 ? areNumbers<std::uint32_t>(weights, 0x7f800000U)
                          : areNumbers<std::uint16_t>(weights, 0x7c00U));
    return known->first;
}

}  // namespace

bool looksLikeVoiceModel(const std::filesystem::path& file) {
    try {
        return beginsAsOne(contentOf(file, headBytes));
    } catch (const ModelError&) {
        return false;
    }
}

std::uint64_t readVoiceModel(const std::filesystem::path& file) {
    const auto content = contentOf(file, mostBytes + 1);
    if (!beginsAsOne(content))
        throw ModelError(nameOf(file) + " is no model that tells voices from other sounds.");
    Walk walk(content, nameOf(file));
    walk.take(headBytes);
    for (int i = 0; i < 3; ++i)
        walk.next();  // the version
    for (const auto number : shape)
        walk.expect(walk.next() == number);
    std::map<std::string_view, int> found;
    while (found.size() < tensors().size())
        walk.expect(++found[skipTensor(walk)] == 1);
    walk.expect(walk.isAtEnd());
    return content.size();
}

}  // namespace korvane
