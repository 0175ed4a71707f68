#include "platform/speech/words/JapaneseEndings.h"

#include <algorithm>
#include <array>

namespace korvane {
namespace {

// Short words in hiragana that are no endings: particles, the copula, pointing words, common adverbs and
// nouns.
constexpr std::array<std::u16string_view, 77> standing{
    u"は",   u"が",   u"を",   u"に",   u"へ",   u"と",   u"で",   u"も",   u"の",   u"や",   u"か",
    u"よ",   u"ね",   u"な",   u"だ",   u"ぞ",   u"わ",   u"から", u"まで", u"より", u"だけ", u"など",
    u"ので", u"のに", u"けど", u"しか", u"さえ", u"こそ", u"ほど", u"でも", u"とも", u"には", u"では",
    u"とは", u"にも", u"とか", u"って", u"ずつ", u"です", u"これ", u"それ", u"あれ", u"どれ", u"この",
    u"その", u"あの", u"どの", u"ここ", u"そこ", u"どこ", u"もう", u"まだ", u"また", u"いい", u"よく",
    u"すぐ", u"ただ", u"まず", u"つい", u"ほぼ", u"こと", u"もの", u"とき", u"ため", u"わけ", u"はず",
    u"まま", u"うち", u"ほか", u"とて", u"なぜ", u"いつ", u"だれ", u"なに", u"ひと", u"みな", u"あと"};
// Endings that follow anything; an adverb or a greeting ("なんとなく", "ありがとう") takes no others.
constexpr std::array<std::u16string_view, 9> surestEndings{u"ます", u"ま",   u"た", u"て", u"ない",
                                                           u"たい", u"なく", u"れ", u"ば"};
// Endings of three and more; of those of one and two, everything that doesn't stand by itself is one.
constexpr std::array<std::u16string_view, 22> longEndings{
    u"ました", u"ません", u"ましょう", u"しょう",   u"ください", u"なかっ",   u"なかった", u"なければ",
    u"ければ", u"られる", u"られた",   u"させる",   u"させて",   u"たかった", u"ている",   u"ていた",
    u"ており", u"てます", u"ちゃう",   u"ちゃった", u"そうだ",   u"かった"};

bool isHiragana(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t c) { return (c >= u'ぁ' && c <= u'ゟ') || c == u'ー'; });
}
bool isPrefix(std::u16string_view text) {
    return text == u"お" || text == u"ご";
}
bool standsByItself(std::u16string_view text) {
    return std::ranges::find(standing, text) != standing.end();
}

}  // namespace

bool continuesJapanese(std::u16string_view last, std::u16string_view piece) {
    if (last.empty() || isPrefix(last))
        return !last.empty();
    if (!isHiragana(piece) || isPrefix(piece))
        return false;
    if (piece == u"だ" || piece == u"で")
        return last.ends_with(u'ん');  // "読んだ", but "学生だ"
    if (last == u"で" && piece.starts_with(u'し'))
        return true;  // "でした", "でしょう"
    if (standsByItself(piece) || standsByItself(last))
        return false;
    if (last.size() >= 4 && isHiragana(last))
        return std::ranges::find(surestEndings, piece) != surestEndings.end();
    return piece.size() <= 2 || std::ranges::find(longEndings, piece) != longEndings.end();
}

}  // namespace korvane
