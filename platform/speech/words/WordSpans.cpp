#include "platform/speech/words/WordSpans.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/speech/words/JapaneseEndings.h"
#include "platform/speech/words/WordPieces.h"

namespace korvane {
namespace {

using Characters = std::span<const TokenCharacter>;
using Before = WordPiece::Before;

bool contains(std::u32string_view set, char32_t c) {
    return set.find(c) != std::u32string_view::npos;
}

constexpr std::u32string_view dashes = U"-‐‑‒–—―−";
constexpr std::u32string_view unitSigns = U"%‰°℃℉％";
constexpr std::u32string_view numberSigns = U"№#§＃";
// Keeps the parts of a word on one line.
constexpr char16_t noBreakSpace = 0xa0;
// Those that stand on their word even if a recogniser puts a space before; other marks keep it.
constexpr std::u32string_view closeMarks = U".,…)]}’、。，．";
// What Chinese and Japanese count, in one character after the digits: "5月" is one word.
constexpr std::u32string_view counters =
    U"年月日号時时分秒点點歳岁才回个個人元円圆块次天名本台枚階层度番万萬億亿千百兆";
constexpr std::u16string_view monthCounters[] = {u"个月", u"個月", u"箇月", u"か月",
                                                 u"ヶ月", u"カ月", u"ヵ月", u"ケ月"};
// Behind these stands a number's name and no amount: "Nr. 7 120 Meter" are two numbers.
constexpr std::u16string_view numberWords[] = {u"Nr.",    u"nr.",    u"No.",    u"no.",   u"n.",   u"n°",
                                               u"N°",     u"nº",     u"N.º",    u"n.º",   u"núm.", u"Nummer",
                                               u"numéro", u"número", u"numero", u"номер", u"Номер"};
// What continues the syllable or the character before it.
constexpr std::u32string_view continuing = U"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶーゝゞヽヾ々〻";

bool isCurrency(char32_t c) {
    return u_charType(static_cast<UChar32>(c)) == U_CURRENCY_SYMBOL;
}

class Speller {
  public:
    Speller(Characters characters, const Locale& locale)
        : characters_(characters),
          spaced_(writesSpaces(locale)),
          english_(locale.identifier.starts_with("en")),
          japanese_(locale.identifier.starts_with("ja")) {}

    std::vector<WordSpan> words(const std::vector<WordPiece>& pieces) {
        for (const auto& piece : pieces)
            take(piece);
        if (!words_.empty())
            append(words_.back(), opening_, Before::space);
        std::vector<WordSpan> spans;
        for (const auto& word : words_)
            spans.push_back({word.text, word.spoken.front(), word.spoken.back()});
        return spans;
    }

  private:
    enum class ShortForm {
        none,
        small,    ///< "z.": a small letter, which another part may follow
        letter,   ///< "B."
        two,      ///< "ej."
        doubled,  ///< "EE." of "EE. UU."
    };
    struct Word {
        std::u16string text;
        std::u16string lastPiece;
        std::vector<std::size_t> all;  // characters, marks too
        std::vector<std::size_t> spoken;
        ShortForm shortForm = ShortForm::none;
    };

    char32_t at(std::size_t i) const { return characters_[i].base; }

    void take(const WordPiece& piece) {
        Word word;
        for (auto i = piece.first; i < piece.last; ++i) {
            word.text += characters_[i].text;
            word.all.push_back(i);
            if (characters_[i].isSpoken())
                word.spoken.push_back(i);
            quoteOpen_ = at(i) == U'"' ? !quoteOpen_ : quoteOpen_;
        }
        if (word.spoken.empty()) {
            takeMark(word, piece);
            return;
        }
        word.lastPiece = spokenText(word.spoken);
        word.shortForm = shortFormOf(word);
        const bool joins = opening_.text.empty() && !words_.empty() && belongsToTheLast(word, piece.before);
        if (!opening_.text.empty()) {
            Word whole = std::move(opening_);
            append(whole, word, piece.before == Before::gapAndSpace ? Before::gap : piece.before);
            whole.shortForm = word.shortForm;
            whole.lastPiece = word.lastPiece;
            opening_ = {};
            words_.push_back(std::move(whole));
            return;
        }
        if (!joins) {
            words_.push_back(std::move(word));
            return;
        }
        append(words_.back(), word, piece.before);
        words_.back().shortForm = word.shortForm;
        words_.back().lastPiece = word.lastPiece;
    }

    void takeMark(const Word& mark, const WordPiece& piece) {
        if (!opening_.text.empty() || words_.empty() || opens(mark, piece)) {
            append(opening_, mark, piece.before);
            return;
        }
        append(words_.back(), mark, contains(closeMarks, at(piece.first)) ? Before::nothing : piece.before);
    }

    /// Whether a mark belongs to the word that follows.
    bool opens(const Word& mark, const WordPiece& piece) const {
        const char32_t first = at(piece.first);
        const auto type = u_charType(static_cast<UChar32>(first));
        if (type == U_START_PUNCTUATION || type == U_INITIAL_PUNCTUATION || first == U'¿' || first == U'¡')
            return true;
        if (first == U'"' && mark.all.size() == 1)
            return quoteOpen_;
        // A dash at the beginning of a sentence: somebody else speaks.
        const char32_t last = at(words_.back().all.back());
        return contains(dashes, first) && contains(U".!?…。！？", last);
    }

    /// \param to  may be empty.
    static void append(Word& to, const Word& other, Before before) {
        if (!to.text.empty() && !other.text.empty() &&
            (before == Before::space || before == Before::gapAndSpace))
            to.text += noBreakSpace;
        to.text += other.text;
        to.all.insert(to.all.end(), other.all.begin(), other.all.end());
        to.spoken.insert(to.spoken.end(), other.spoken.begin(), other.spoken.end());
    }

    bool belongsToTheLast(const Word& word, Before before) const {
        if (before == Before::gap || before == Before::gapAndSpace)
            return false;
        const auto& last = words_.back();
        const auto& lastCharacter = characters_[last.all.back()];
        const auto& character = characters_[word.all.front()];
        if (lastCharacter.isDigit() && isUnitOf(word))
            return true;
        if (isNumberSign(last) && character.isDigit())
            return true;
        if (before == Before::nothing)
            return continuesUnspaced(last, word);
        return isThousands(last, word) || (goTogether(last.shortForm, word.shortForm) && !isComplete(last));
    }

    /// "%", "°C" or "€", but not "$5".
    bool isUnitOf(const Word& word) const {
        const char32_t first = at(word.spoken.front());
        return word.spoken.front() == word.all.front() && (contains(unitSigns, first) || isCurrency(first)) &&
               std::ranges::none_of(word.spoken, [&](std::size_t i) { return characters_[i].isDigit(); });
    }
    /// "$", "№"
    bool isNumberSign(const Word& word) const {
        return std::ranges::all_of(
            word.all, [&](std::size_t i) { return isCurrency(at(i)) || contains(numberSigns, at(i)); });
    }

    /// What the dictionary parts and a reader doesn't: "10：30", "5月", a lengthened vowel.
    bool continuesUnspaced(const Word& last, const Word& word) const {
        const auto& end = characters_[last.all.back()];
        const auto first = at(word.all.front());
        if (contains(continuing, first) && end.isUnspaced() && end.isSpoken())
            return true;
        if (japanese_ && end.isUnspaced() && end.isSpoken() &&
            continuesJapanese({spokenText(last.spoken), last.lastPiece}, spokenText(word.spoken),
                              behind(word.all.back())))
            return true;
        if (end.isDigit())
            return (contains(counters, first) && word.spoken.size() == 1) || countsMonths(word);
        const bool number = last.all.size() >= 2 && characters_[*(last.all.end() - 2)].isDigit();
        return number && contains(U":：.．,，", end.base) && characters_[word.all.front()].isDigit();
    }

    std::u16string spokenText(const std::vector<std::size_t>& spoken) const {
        std::u16string text;
        for (const auto i : spoken)
            text += characters_[i].text;
        return text;
    }
    /// The two characters behind one, as far as they are spoken.
    std::u16string behind(std::size_t i) const {
        std::u16string text;
        for (auto k = i + 1; k < characters_.size() && k <= i + 2 && characters_[k].isSpoken(); ++k)
            text += characters_[k].text;
        return text;
    }

    /// "个月" of "5个月", marks behind it left aside.
    bool countsMonths(const Word& word) const {
        return word.spoken.size() == 2 && std::ranges::any_of(monthCounters, [&](const auto& counter) {
                   return word.text.starts_with(counter);
               });
    }

    /// "1" before "000": groups of three, as most languages but English write them.
    bool isThousands(const Word& last, const Word& word) const {
        const bool isPause =
            characters_[last.spoken.back()].phrase != characters_[word.spoken.front()].phrase;
        if (english_ || !spaced_ || isPause || isNumbered())
            return false;
        const auto group = groupAtTheEnd(last);
        const auto digits = static_cast<std::size_t>(
            std::ranges::find_if(word.all, [&](std::size_t i) { return !characters_[i].isDigit(); }) -
            word.all.begin());
        const bool restIsNumber =
            std::ranges::none_of(word.all, [&](std::size_t i) { return characters_[i].isLetter(); });
        return group && digits == 3 && restIsNumber;
    }
    /// Whether the last word is a number that names something: "№ 7" or "Nr. 7".
    bool isNumbered() const {
        if (contains(numberSigns, at(words_.back().all.front())))
            return true;
        return words_.size() >= 2 &&
               std::ranges::find(numberWords, (words_.end() - 2)->text) != std::end(numberWords);
    }
    /// Whether the last word ends with one to three digits that can be followed by a group.
    bool groupAtTheEnd(const Word& last) const {
        std::u16string_view text = last.text;
        const auto space = text.rfind(noBreakSpace);
        const bool first = space == std::u16string_view::npos;
        text = first ? text : text.substr(space + 1);
        const auto isDigit = [](char16_t c) { return u_isdigit(c); };
        const auto digitsFrom = static_cast<std::size_t>(std::ranges::find_if(text, isDigit) - text.begin());
        const auto digits = text.substr(digitsFrom);
        if (digits.empty() || digits.size() > 3 || !std::ranges::all_of(digits, isDigit))
            return false;
        return first ? digits.front() != u'0' : digits.size() == 3 && digitsFrom == 0;
    }

    ShortForm shortFormOf(const Word& word) const {
        const auto letters = word.spoken.size();
        if (!spaced_ || letters > 2 || word.all.size() == letters || at(word.all[letters]) != U'.' ||
            !std::ranges::all_of(word.spoken, [&](std::size_t i) { return characters_[i].isLetter(); }))
            return ShortForm::none;
        const auto first = static_cast<UChar32>(at(word.spoken.front()));
        const auto last = static_cast<UChar32>(at(word.spoken.back()));
        if (letters == 2)
            return u_islower(last) ? ShortForm::two : first == last ? ShortForm::doubled : ShortForm::none;
        // These letters are words, and end sentences.
        const bool isWord = contains(U"яєèéàó", static_cast<char32_t>(first));
        return u_islower(first) && !isWord ? ShortForm::small : ShortForm::letter;
    }
    static bool goTogether(ShortForm last, ShortForm next) {
        if (last == ShortForm::small)
            return next == ShortForm::small || next == ShortForm::letter || next == ShortForm::two;
        return last == ShortForm::doubled && next == ShortForm::doubled;
    }

    /// "т. д." and its like have two parts; what follows is a word: "г. Москва".
    static bool isComplete(const Word& word) {
        return word.text.starts_with(u"т.") && word.text.find(noBreakSpace) != std::u16string::npos;
    }

    const Characters characters_;
    const bool spaced_;
    const bool english_;
    const bool japanese_;
    std::vector<Word> words_;
    Word opening_;  // marks for the word to come
    bool quoteOpen_ = false;
};

}  // namespace

bool writesSpaces(const Locale& locale) {
    return !locale.identifier.starts_with("zh") && !locale.identifier.starts_with("ja");
}

std::vector<WordSpan> wordSpans(std::span<const TokenCharacter> characters, const Locale& locale) {
    return Speller(characters, locale).words(wordPieces(characters, locale));
}

}  // namespace korvane
