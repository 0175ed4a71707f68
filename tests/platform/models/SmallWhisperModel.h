// A Whisper model file in the ggml form that is whole but knows nothing: one narrow layer each, all zero.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace korvane::test {

struct SmallModelForm {
    std::int32_t vocabulary = 51865;
    std::int32_t state = 8;
    std::int32_t audioLayers = 1;
    std::int32_t textLayers = 1;
    std::int32_t weightType = 1;  ///< 16 bits
    std::int32_t fftBins = 201;
};

class SmallModelWriter {
  public:
    explicit SmallModelWriter(const SmallModelForm& form) : form_(form) {}

    std::string bytes() {
        number(std::uint32_t{0x67676d6c});
        for (const std::int32_t value : {form_.vocabulary, 1500, form_.state, 1, form_.audioLayers, 448,
                                         form_.state, 1, form_.textLayers, 80, form_.weightType})
            number(value);
        number(std::int32_t{80});
        number(form_.fftBins);
        out_.append(80 * static_cast<std::size_t>(form_.fftBins) * sizeof(float), '\0');
        const std::int32_t words = 50257;
        number(words);
        for (std::int32_t i = 0; i < words; ++i) {
            const std::string word = i == 220 ? " " : "w" + std::to_string(i);
            number(static_cast<std::uint32_t>(word.size()));
            out_ += word;
        }
        const int count = 7 + 15 * form_.audioLayers + 4 + 24 * form_.textLayers;
        tensor("decoder.token_embedding.weight", form_.state, form_.vocabulary, form_.weightType);
        for (int i = 1; i < count; ++i)
            tensor("tensor" + std::to_string(i), form_.state, 1, 0);
        return out_;
    }

  private:
    template <class T>
    void number(T value) {
        char raw[sizeof(T)];
        std::memcpy(raw, &value, sizeof(T));
        out_.append(raw, sizeof(T));
    }

    void tensor(const std::string& name, std::int32_t width, std::int32_t height, std::int32_t type) {
        number(std::int32_t{2});
        number(static_cast<std::int32_t>(name.size()));
        number(type);
        number(width);
        number(height);
        out_ += name;
        const std::size_t numbers = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        out_.append(type == 8 ? numbers / 32 * 34 : numbers * (type == 0 ? 4 : 2), '\0');
    }

    SmallModelForm form_;
    std::string out_;
};

inline std::string smallWhisperModel(const SmallModelForm& form = {}) {
    return SmallModelWriter(form).bytes();
}

}  // namespace korvane::test
