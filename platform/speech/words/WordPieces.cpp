#include "platform/speech/words/WordPieces.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace korvane {
namespace {

using Characters = std::span<const TokenCharacter>;

/// Finds words by dictionary where text is written without spaces.
class Dictionary {
  public:
    explicit Dictionary(const Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        words_.reset(icu::BreakIterator::createWordInstance(icu::Locale(locale.identifier.c_str()), status));
        if (U_FAILURE(status))
            words_.reset();
    }

    /// Whether a word may begin at each of the characters.
    std::vector<bool> starts(Characters characters) {
        std::vector<bool> starts(characters.size(), !words_);
        if (!words_)
            return starts;  // without its dictionary the library leaves no better guess than single
                            // characters
        icu::UnicodeString text;
        for (const auto& character : characters)
            text.append(character.text.data(), static_cast<std::int32_t>(character.text.size()));
        words_->setText(text);
        std::int32_t at = 0;
        for (std::size_t i = 0; i < characters.size(); ++i) {
            starts[i] = words_->isBoundary(at);
            at += static_cast<std::int32_t>(characters[i].text.size());
        }
        return starts;
    }

  private:
    std::unique_ptr<icu::BreakIterator> words_;
};

bool isPause(const TokenCharacter& character) {
    return character.base == U'—' || character.base == U'…' || character.base == U'―';
}
bool isDoubled(const TokenCharacter& a, const TokenCharacter& b) {
    return a.base == b.base && (a.base == U'.' || a.base == U'-');
}
/// "5个月" and "3か月" count months, not things in a month.
bool countsMonths(const TokenCharacter& digit, const TokenCharacter& counter, const TokenCharacter& month) {
    constexpr std::u32string_view counters = U"个個箇かヶカヵケ";
    return digit.isDigit() && counters.find(counter.base) != std::u32string_view::npos && month.base == U'月';
}

/// Which marks stand at the end of what they enclose; plain quotes do every other time.
std::vector<bool> closingMarks(Characters characters) {
    std::vector<bool> closes;
    bool open = false;
    for (const auto& character : characters) {
        const auto type = u_charType(static_cast<UChar32>(character.base));
        const bool isPlain = character.base == U'"';
        closes.push_back(type == U_END_PUNCTUATION || type == U_FINAL_PUNCTUATION || (isPlain && open));
        open = open != isPlain;
    }
    return closes;
}

class Cutter {
  public:
    Cutter(Characters characters, const Locale& locale)
        : characters_(characters), closes_(closingMarks(characters)), dictionary_(locale) {}

    std::vector<WordPiece> pieces() {
        for (std::size_t i = 0; i < characters_.size();) {
            if (const auto& character = characters_[i]; character.isSpace() || character.isGap()) {
                separate(character.isGap());
                ++i;
                continue;
            }
            const auto from = i;
            while (i < characters_.size() && !characters_[i].isSpace() && !characters_[i].isGap())
                ++i;
            cut(from, i);
        }
        return std::move(pieces_);
    }

  private:
    void separate(bool atGap) {
        using enum WordPiece::Before;
        const bool behindGap = before_ == gap || before_ == gapAndSpace;
        before_ = atGap ? gap : behindGap ? gapAndSpace : space;
    }

    void cut(std::size_t from, std::size_t to) {
        const auto inside = characters_.subspan(from, to - from);
        std::vector<bool> byDictionary;
        if (std::ranges::any_of(inside, &TokenCharacter::isUnspaced))
            byDictionary = dictionary_.starts(inside);
        auto first = from;
        for (auto i = from + 1; i <= to; ++i) {
            if (i < to && !partsBefore(i) &&
                (byDictionary.empty() || !partsUnspaced(i, byDictionary[i - from])))
                continue;
            pieces_.push_back({first, i, before_});
            before_ = WordPiece::Before::nothing;
            first = i;
        }
    }

    /// In a text that is written without spaces, at least partly: "“好”OK".
    bool partsUnspaced(std::size_t i, bool byDictionary) const {
        const auto& before = characters_[i - 1];
        if (closes_[i] || (i >= 2 && countsMonths(characters_[i - 2], before, characters_[i])))
            return false;
        const bool isApostrophe = before.base == U'’' && i >= 2 && !characters_[i - 2].isUnspaced();
        if (closes_[i - 1] && !isApostrophe && characters_[i].isSpoken())
            return true;
        return byDictionary && (characters_[i].isUnspaced() || before.isUnspaced());
    }

    /// Between a pause and a letter: "well...so", "yes—no", but "..." before a word, and "3.14".
    bool partsBefore(std::size_t i) const {
        const bool pause =
            isPause(characters_[i - 1]) || (i >= 2 && isDoubled(characters_[i - 1], characters_[i - 2]));
        if (pause)
            return characters_[i].isSpoken() && spokenBefore(i);
        const auto mark = characters_[i - 1].base;
        if (i < 2 || !characters_[i].isLetter() || !characters_[i - 2].isLetter())
            return false;
        return mark == U',' || mark == U';' || ((mark == U'!' || mark == U'?') && !isInAName(i - 1));
    }
    /// "P!nk"
    bool isInAName(std::size_t mark) const {
        const bool isFirst = mark < 2 || !characters_[mark - 2].isSpoken();
        return isFirst && u_islower(static_cast<UChar32>(characters_[mark + 1].base));
    }
    bool spokenBefore(std::size_t i) const {
        while (i > 0 && characters_[i - 1].isMark())
            --i;
        return i > 0 && characters_[i - 1].isSpoken();
    }

    const Characters characters_;
    const std::vector<bool> closes_;
    Dictionary dictionary_;
    WordPiece::Before before_ = WordPiece::Before::gap;
    std::vector<WordPiece> pieces_;
};

}  // namespace

std::vector<WordPiece> wordPieces(std::span<const TokenCharacter> characters, const Locale& locale) {
    return Cutter(characters, locale).pieces();
}

}  // namespace korvane
