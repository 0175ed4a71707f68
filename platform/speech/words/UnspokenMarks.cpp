// What recognisers write without anybody having said it: sounds in brackets, special signs, notes.
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/speech/words/SoundDescriptions.h"
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

constexpr std::u32string_view neverSpoken = U"♩♪♫♬🎵🎶[]【】［］〔〕";
constexpr std::u32string_view stars = U"*＊";
constexpr std::u32string_view arrows = U">＞";
constexpr std::u32string_view sentenceEnds = U".!?…。！？";
constexpr std::u32string_view sentenceParts = U",;:，；：、";
// May stand between a sentence and a description: "Hello.\" - (laughs)".
constexpr std::u32string_view betweenSentences = U"\"'”’»)）」』-–—―";
// Have a capital inside a sentence too.
constexpr std::u32string_view capitalAnywhere[] = {U"I", U"Sie", U"Ihr", U"Ihnen"};

bool contains(std::u32string_view set, char32_t c) {
    return set.find(c) != std::u32string_view::npos;
}

const Pair* pairOpenedBy(char32_t c) {
    const auto* found = std::ranges::find(pairs, c, &Pair::open);
    return found == pairs.end() ? nullptr : found;
}

class Unspoken {
  public:
    Unspoken(Characters& characters, const Locale& locale)
        : characters_(characters), locale_(locale), isDecoration_(characters.size(), false) {}

    void drop() {
        for (std::size_t i = 0; i < characters_.size();)
            i = take(i);
        std::size_t i = 0;
        std::erase_if(characters_, [&](const auto&) { return isDecoration_[i++]; });
    }

  private:
    char32_t at(std::size_t i) const { return characters_[i].base; }
    std::size_t limit(std::size_t i) const {
        return std::min(characters_.size(), i + longestDescription + 2);
    }
    bool isSpokenAt(std::size_t i) const { return i < characters_.size() && characters_[i].isSpoken(); }
    bool isSpokenBefore(std::size_t i) const { return i > 0 && characters_[i - 1].isSpoken(); }

    /// \return where to go on.
    std::size_t take(std::size_t i) {
        if (const auto end = endOfDescription(i))
            return makeGap(i, *end);
        if (contains(stars, at(i)))
            return takeStars(i);
        if (contains(arrows, at(i)))
            return takeArrows(i);
        if (contains(neverSpoken, at(i)))
            return makeGap(i, i + 1);
        return i + 1;
    }

    std::size_t makeGap(std::size_t first, std::size_t last) {
        for (auto i = first; i < last; ++i)
            characters_[i].kind = Kind::gap;
        return last;
    }
    std::size_t decorate(std::size_t first, std::size_t last) {
        std::fill(isDecoration_.begin() + static_cast<std::ptrdiff_t>(first),
                  isDecoration_.begin() + static_cast<std::ptrdiff_t>(last), true);
        return last;
    }
    std::size_t endOfRun(std::size_t i) const {
        auto end = i;
        while (end < characters_.size() && at(end) == at(i))
            ++end;
        return end;
    }

    /// Behind the last character of the description that begins at `i`, if one does.
    std::optional<std::size_t> endOfDescription(std::size_t i) const {
        if (at(i) == U'<')
            return endOfSpecialSign(i);
        const auto* pair = pairOpenedBy(at(i));
        if (pair == nullptr)
            return std::nullopt;
        int depth = 0;
        for (std::size_t k = i; k < limit(i); ++k) {
            depth += at(k) == pair->open ? 1 : at(k) == pair->close ? -1 : 0;
            if (depth == 0)
                return !pair->round || isBracketedDescription({i, i + 1, k, k + 1}) ? std::optional(k + 1)
                                                                                    : std::nullopt;
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

    /// "*applause*" and "**applause**" name a sound where they stand alone; inside a sentence every word is
    /// said with stress, "she *sings*" too. "f**k" is one word, and in "2 * 3" they are read out.
    std::size_t takeStars(std::size_t i) {
        const auto end = endOfRun(i);
        if (isTimes(i, end)) {
            characters_[i].kind = Kind::spoken;
            return end;
        }
        if (isSpokenBefore(i)) {
            const bool hides = isSpokenAt(end) || end - i >= 2;
            return hides && !characters_[i - 1].isUnspaced() ? end : decorate(i, end);
        }
        const auto close = closingStars(i, end);
        if (!close)
            return decorate(i, end);
        const auto behind = endOfRun(*close);
        if (isStarredDescription({i, end, *close, behind}))
            return makeGap(i, behind);
        decorate(*close, behind);
        return decorate(i, end);
    }

    /// Where the stars begin that close those in [open, inner).
    std::optional<std::size_t> closingStars(std::size_t open, std::size_t inner) const {
        for (auto k = inner; k < limit(open) && !characters_[inner].isSpace(); ++k) {
            if (at(k) != at(open))
                continue;
            const auto behind = endOfRun(k);
            if (!characters_[k - 1].isSpace() && !isSpokenAt(behind))
                return k;
            k = behind - 1;
        }
        return std::nullopt;
    }

    /// "2 * 3" and "2*3"
    bool isTimes(std::size_t i, std::size_t end) const {
        if (end - i != 1 || i == 0 || end >= characters_.size())
            return false;
        const std::size_t space = characters_[i - 1].isSpace() && characters_[end].isSpace() ? 1 : 0;
        return i > space && end + space < characters_.size() && characters_[i - 1 - space].isDigit() &&
               characters_[end + space].isDigit();
    }

    /// ">>" before what another person says.
    std::size_t takeArrows(std::size_t i) {
        const auto end = endOfRun(i);
        const bool atBegin = i == 0 || characters_[i - 1].isSpace() || characters_[i - 1].isGap();
        return end - i >= 2 && atBegin ? makeGap(i, end) : end;
    }

    /// What stands in [inner, innerEnd), between the signs of the rest of [first, last).
    struct Marked {
        std::size_t first, inner, innerEnd, last;
    };
    std::span<const TokenCharacter> content(const Marked& marked) const {
        return std::span(characters_).subspan(marked.inner, marked.innerEnd - marked.inner);
    }

    /// Nobody speaks brackets, but recognisers put what is said by the way into them too. What can't be told
    /// apart stays, as a word too many is easily left out and one that is missing can't be chosen.
    bool isBracketedDescription(const Marked& marked) const {
        const auto place = !followsSentence(marked.first) && continuesSentence(marked.last)
                               ? Place::insideSentence
                               : Place::elsewhere;
        return isSoundDescription(content(marked), locale_, place) ||
               (mayBeDescription(content(marked)) && standsAlone(marked));
    }
    bool isStarredDescription(const Marked& marked) const {
        if (isSoundDescription(content(marked), locale_, Place::elsewhere))
            return standsAlone(marked) || (startsAlone(marked) && beginsSentence(marked.last));
        return mayBeDescription(content(marked)) && standsAlone(marked);
    }

    bool standsAlone(const Marked& marked) const {
        return startsAlone(marked) && endsSentence(marked.inner, marked.last);
    }
    /// What has a full stop of its own is a sentence: "*I know.*"
    bool startsAlone(const Marked& marked) const {
        const auto isEnd = [](const auto& c) { return contains(sentenceEnds, c.base); };
        return followsSentence(marked.first) && std::ranges::none_of(content(marked), isEnd);
    }
    bool followsSentence(std::size_t i) const {
        while (i > 0 && (characters_[i - 1].isSpace() || characters_[i - 1].isGap() ||
                         contains(betweenSentences, at(i - 1))))
            --i;
        return i == 0 || contains(sentenceEnds, at(i - 1));
    }
    /// A small letter before and a capital behind: "(coughs) Hello", but "(really) he said" and "*I* am".
    /// What has a full stop of its own is a sentence: "*Never*!"
    bool endsSentence(std::size_t inner, std::size_t last) const {
        if (last < characters_.size() && contains(sentenceEnds, at(last)))
            return false;
        last = behindSpaces(last);
        if (last == characters_.size())
            return true;
        if (!characters_[last].isSpoken())
            return !contains(sentenceParts, at(last));
        return u_islower(static_cast<UChar32>(at(inner))) && u_isupper(static_cast<UChar32>(at(last)));
    }

    /// Whether words of the same sentence follow, also behind a comma or in quotes.
    bool continuesSentence(std::size_t i) const {
        for (; i < characters_.size() && pairOpenedBy(at(i)) == nullptr; ++i) {
            if (characters_[i].isSpoken() || contains(sentenceParts, at(i)))
                return true;
            if (contains(sentenceEnds, at(i)))
                return false;
        }
        return false;
    }
    /// "*Musik* Hallo", but "*Music* I love".
    bool beginsSentence(std::size_t i) const {
        i = behindSpaces(i);
        std::u32string word;
        for (; isSpokenAt(i); ++i)
            word += at(i);
        return !word.empty() && u_isupper(static_cast<UChar32>(word.front())) &&
               std::ranges::find(capitalAnywhere, word) == std::end(capitalAnywhere);
    }
    std::size_t behindSpaces(std::size_t i) const {
        while (i < characters_.size() && characters_[i].isSpace())
            ++i;
        return i;
    }

    Characters& characters_;
    const Locale& locale_;
    std::vector<bool> isDecoration_;
};

}  // namespace

void dropUnspoken(std::vector<TokenCharacter>& characters, const Locale& locale) {
    Unspoken(characters, locale).drop();
}

}  // namespace korvane
