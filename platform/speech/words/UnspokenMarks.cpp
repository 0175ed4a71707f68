// What recognisers write without anybody having said it: sounds in brackets, special signs, notes.
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "platform/speech/words/TokenCharacters.h"

namespace korvane {
namespace {

using Kind = TokenCharacter::Kind;
using Characters = std::vector<TokenCharacter>;

// A bracket that stays open for longer is an accident and takes nothing with it.
constexpr std::size_t longestDescription = 100;

struct Pair {
    char32_t open, close;
    bool round;  // may hold something spoken
};
constexpr std::array pairs{Pair{U'[', U']', false},   Pair{U'【', U'】', false}, Pair{U'［', U'］', false},
                           Pair{U'〔', U'〕', false}, Pair{U'(', U')', true},    Pair{U'（', U'）', true}};

constexpr std::u32string_view neverSpoken = U"♩♪♫♬🎵🎶*＊[]【】［］〔〕";

const Pair* pairOpenedBy(char32_t c) {
    const auto* found = std::ranges::find(pairs, c, &Pair::open);
    return found == pairs.end() ? nullptr : found;
}

class Unspoken {
  public:
    Unspoken(Characters& characters, bool spaced) : characters_(characters), spaced_(spaced) {}

    void drop() {
        for (std::size_t i = 0; i < characters_.size(); ++i) {
            const auto end = endOfDescription(i);
            for (std::size_t k = i; end && k < *end; ++k)
                characters_[k].kind = Kind::gap;
            if (end)
                i = *end - 1;
            else if (neverSpoken.find(at(i)) != std::u32string_view::npos)
                characters_[i].kind = Kind::gap;
        }
    }

  private:
    char32_t at(std::size_t i) const { return characters_[i].base; }
    std::size_t limit(std::size_t i) const {
        return std::min(characters_.size(), i + longestDescription + 2);
    }

    /// Behind the last character of the description that begins at `i`, if one does.
    std::optional<std::size_t> endOfDescription(std::size_t i) const {
        if (at(i) == U'<')
            return endOfSpecialSign(i);
        if (at(i) == U'*' || at(i) == U'＊')
            return endOfStarred(i);
        const auto* pair = pairOpenedBy(at(i));
        if (pair == nullptr)
            return std::nullopt;
        int depth = 0;
        for (std::size_t k = i; k < limit(i); ++k) {
            depth += at(k) == pair->open ? 1 : at(k) == pair->close ? -1 : 0;
            if (depth == 0)
                return pair->round && mayBeSpoken(i, k) ? std::nullopt : std::optional(k + 1);
        }
        return std::nullopt;
    }

    /// "<|", anything, "|>".
    std::optional<std::size_t> endOfSpecialSign(std::size_t i) const {
        if (i + 1 >= characters_.size() || at(i + 1) != U'|')
            return std::nullopt;
        for (std::size_t k = i + 3; k < limit(i); ++k) {
            if (at(k) == U'>' && at(k - 1) == U'|')
                return k + 1;
        }
        return std::nullopt;
    }

    /// "*applause*" and "**applause**", but not "2 * 3 * 4".
    std::optional<std::size_t> endOfStarred(std::size_t i) const {
        const bool free = i == 0 || !characters_[i - 1].isSpoken();
        if (!free || i + 1 >= characters_.size() || characters_[i + 1].isSpace())
            return std::nullopt;
        for (std::size_t k = i + 1; k < limit(i); ++k) {
            if (at(k) == at(i) && !characters_[k - 1].isSpace() && at(k - 1) != at(i))
                return k + 1;
        }
        return std::nullopt;
    }

    /// "(2020)" is read out, and "apple(s)" is one word.
    bool mayBeSpoken(std::size_t open, std::size_t close) const {
        const auto inside = std::span(characters_).subspan(open + 1, close - open - 1);
        if (std::ranges::any_of(inside, &TokenCharacter::isDigit))
            return true;
        const bool attached = spaced_ && open > 0 && characters_[open - 1].isLetter();
        return attached && !inside.empty() && inside.size() <= 3 &&
               std::ranges::all_of(inside, &TokenCharacter::isLetter);
    }

    Characters& characters_;
    const bool spaced_;
};

}  // namespace

void dropUnspoken(std::vector<TokenCharacter>& characters, bool spaced) {
    Unspoken(characters, spaced).drop();
}

}  // namespace korvane
