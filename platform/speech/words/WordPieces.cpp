#include "platform/speech/words/WordPieces.h"

#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>

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

class Cutter {
  public:
    Cutter(Characters characters, const Locale& locale) : characters_(characters), dictionary_(locale) {}

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
                !(!byDictionary.empty() && byDictionary[i - from] && atUnspaced(i)))
                continue;
            pieces_.push_back({first, i, before_});
            before_ = WordPiece::Before::nothing;
            first = i;
        }
    }

    bool atUnspaced(std::size_t i) const {
        return characters_[i].isUnspaced() || characters_[i - 1].isUnspaced();
    }

    /// Between a pause and a letter: "well...so", "yes—no", but "..." before a word, and "3.14".
    bool partsBefore(std::size_t i) const {
        const bool pause =
            isPause(characters_[i - 1]) || (i >= 2 && isDoubled(characters_[i - 1], characters_[i - 2]));
        if (pause)
            return characters_[i].isSpoken() && spokenBefore(i);
        const bool listed = characters_[i - 1].base == U',' || characters_[i - 1].base == U';' ||
                            characters_[i - 1].base == U'!' || characters_[i - 1].base == U'?';
        return listed && i >= 2 && characters_[i].isLetter() && characters_[i - 2].isLetter();
    }
    bool spokenBefore(std::size_t i) const {
        while (i > 0 && characters_[i - 1].isMark())
            --i;
        return i > 0 && characters_[i - 1].isSpoken();
    }

    const Characters characters_;
    Dictionary dictionary_;
    WordPiece::Before before_ = WordPiece::Before::gap;
    std::vector<WordPiece> pieces_;
};

}  // namespace

std::vector<WordPiece> wordPieces(std::span<const TokenCharacter> characters, const Locale& locale) {
    return Cutter(characters, locale).pieces();
}

}  // namespace korvane
