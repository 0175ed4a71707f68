// What a Japanese dictionary parts and a reader doesn't: a verb from its endings, a polite prefix from its
// noun.
#pragma once

#include <string_view>

namespace korvane {

/// Whether `piece` goes on with the word whose last piece is `last`, nothing between them: "行き" "ま" "した"
/// is one word, "私" "は" "学生" "です" are four. Particles and the copula stay words of their own.
bool continuesJapanese(std::u16string_view last, std::u16string_view piece);

}  // namespace korvane
