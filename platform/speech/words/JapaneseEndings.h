// What a Japanese dictionary parts and a reader doesn't: a verb from its endings, a polite prefix from its
// noun.
#pragma once

#include <string_view>

namespace korvane {

/// A word as far as it is put together, and its last piece.
struct JapaneseWord {
    std::u16string_view whole;
    std::u16string_view last;
};

/// Whether `piece` goes on with `word`, nothing between them: "行き" "ま" "した" is one word, "私" "は"
/// "学生" "です" are four. Particles, the copula and verbs that stand by themselves stay words of their own,
/// and only verbs and adjectives take endings: "昨日" "ねこ" are two words. \param behind  some characters
/// that follow the piece; the dictionary sees particles in the middle of verbs
///                ("わ" "から" "ない").
bool continuesJapanese(const JapaneseWord& word, std::u16string_view piece, std::u16string_view behind);

}  // namespace korvane
