#include "platform/speech/words/TokenCharacters.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>
#include <unicode/utf8.h>

#include <string_view>

namespace korvane {
namespace {

using Kind = TokenCharacter::Kind;

constexpr char32_t zeroWidthSpace = 0x200b, zeroWidthJoiner = 0x200d, zeroWidthNonJoiner = 0x200c,
                   replacement = 0xfffd;
// Signs that are read out by name. Those of currencies are a category of their own.
constexpr std::u32string_view namedSigns = U"%‰&@#°§№+=×÷±−℃℉％＆＠＃＋＝";

bool isSpaceCharacter(UChar32 c) {
    return u_isUWhiteSpace(c) || c == static_cast<UChar32>(zeroWidthSpace);
}

bool joinsTheOneBefore(UChar32 c) {
    const auto mask = U_GET_GC_MASK(c);
    return (mask & U_GC_M_MASK) != 0 || c == static_cast<UChar32>(zeroWidthJoiner) ||
           c == static_cast<UChar32>(zeroWidthNonJoiner) || u_hasBinaryProperty(c, UCHAR_EMOJI_MODIFIER);
}

/// Broken UTF-8 comes as a negative number.
bool isText(UChar32 c) {
    return c >= 0 && c != static_cast<UChar32>(replacement) && (U_GET_GC_MASK(c) & U_GC_C_MASK) == 0;
}

Kind kindOf(UChar32 c) {
    if (isSpaceCharacter(c))
        return Kind::space;
    if (u_isalnum(c) || (U_GET_GC_MASK(c) & (U_GC_SC_MASK | U_GC_N_MASK)) != 0 ||
        namedSigns.find(static_cast<char32_t>(c)) != std::u32string_view::npos)
        return Kind::spoken;
    return Kind::mark;
}

std::u16string composed(const std::u16string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return text;
    const icu::UnicodeString result =
        nfc->normalize(icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())), status);
    return U_FAILURE(status) ? text
                             : std::u16string(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

class Joined {
  public:
    explicit Joined(std::span<const HeardToken> tokens) {
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            bytes_ += tokens[i].bytes;
            tokenOfByte_.resize(bytes_.size(), i);
            phraseOfToken_.push_back((i == 0 ? 0 : phraseOfToken_.back()) + (tokens[i].afterPause ? 1 : 0));
        }
    }

    std::vector<TokenCharacter> characters() && {
        const auto length = static_cast<std::int32_t>(bytes_.size());
        for (std::int32_t at = 0; at < length;) {
            const auto from = at;
            UChar32 c = 0;
            U8_NEXT(bytes_.data(), at, length, c);
            take(c, tokenOfByte_[static_cast<std::size_t>(from)],
                 tokenOfByte_[static_cast<std::size_t>(at) - 1]);
        }
        for (auto& character : characters_) {
            character.text = composed(character.text);
            UChar32 base = 0;
            U16_GET(character.text.data(), 0, 0, static_cast<std::int32_t>(character.text.size()), base);
            character.base = static_cast<char32_t>(base);
            character.kind = kindOf(base);
        }
        return std::move(characters_);
    }

  private:
    void take(UChar32 c, std::size_t firstToken, std::size_t lastToken) {
        const bool accent = c >= 0 && joinsTheOneBefore(c);
        if (!accent && !isSpaceCharacter(c) && !isText(c))
            return;
        if (!accent) {
            characters_.push_back({{}, 0, firstToken, lastToken, phraseOfToken_[firstToken], Kind::mark});
        } else if (characters_.empty() || isSpaceCharacter(characters_.back().text.front())) {
            return;
        }
        auto& character = characters_.back();
        icu::UnicodeString appended(c);
        character.text.append(appended.getBuffer(), static_cast<std::size_t>(appended.length()));
        character.lastToken = lastToken;
    }

    std::string bytes_;
    std::vector<std::size_t> tokenOfByte_;
    std::vector<std::size_t> phraseOfToken_;
    std::vector<TokenCharacter> characters_;
};

}  // namespace

bool TokenCharacter::isDigit() const {
    return u_isdigit(static_cast<UChar32>(base));
}
bool TokenCharacter::isLetter() const {
    return u_isalpha(static_cast<UChar32>(base));
}

bool TokenCharacter::isUnspaced() const {
    UErrorCode status = U_ZERO_ERROR;
    const auto script = uscript_getScript(static_cast<UChar32>(base), &status);
    if (script == USCRIPT_HAN || script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA)
        return true;
    const auto block = ublock_getCode(static_cast<UChar32>(base));
    return block == UBLOCK_CJK_SYMBOLS_AND_PUNCTUATION || block == UBLOCK_KATAKANA ||
           (block == UBLOCK_HALFWIDTH_AND_FULLWIDTH_FORMS && isMark());
}

std::vector<TokenCharacter> charactersOfTokens(std::span<const HeardToken> tokens) {
    return Joined(tokens).characters();
}

}  // namespace korvane
