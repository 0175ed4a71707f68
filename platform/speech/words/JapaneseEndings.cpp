#include "platform/speech/words/JapaneseEndings.h"

#include <algorithm>
#include <string>

namespace korvane {
namespace {

using Text = std::u16string_view;

// Short words in hiragana that are no endings: particles, the copula, pointing words, common adverbs, nouns
// and verbs.
constexpr Text standing[] = {
    u"は",   u"が",   u"を",   u"に",   u"へ",     u"と",   u"で",   u"も",    u"の",   u"や",   u"か",
    u"よ",   u"ね",   u"な",   u"だ",   u"ぞ",     u"わ",   u"から", u"まで",  u"より", u"だけ", u"など",
    u"ので", u"のに", u"けど", u"しか", u"さえ",   u"こそ", u"ほど", u"でも",  u"とも", u"には", u"では",
    u"とは", u"にも", u"とか", u"って", u"ずつ",   u"です", u"これ", u"それ",  u"あれ", u"どれ", u"この",
    u"その", u"あの", u"どの", u"ここ", u"そこ",   u"どこ", u"もう", u"まだ",  u"また", u"いい", u"よく",
    u"すぐ", u"ただ", u"まず", u"つい", u"ほぼ",   u"こと", u"もの", u"とき",  u"ため", u"わけ", u"はず",
    u"まま", u"うち", u"ほか", u"とて", u"なぜ",   u"いつ", u"だれ", u"なに",  u"ひと", u"みな", u"あと",
    u"かも", u"なら", u"じゃ", u"かな", u"かね",   u"よね", u"よな", u"だよ",  u"だね", u"なの", u"のよ",
    u"のね", u"もん", u"する", u"くる", u"くらい", u"よう", u"そう", u"ぐらい"};
// Verbs that only help others, behind "て": "寝ている", but "犬 いる".
constexpr Text helpers[] = {u"いる", u"ある", u"いく", u"みる", u"おく", u"くる", u"きた", u"いた"};
// Endings that follow anything; an adverb or a greeting ("なんとなく", "ありがとう") takes no others.
constexpr Text surestEndings[] = {u"ます", u"ま", u"た", u"て", u"ない", u"たい", u"なく", u"れ", u"ば"};
// Endings of three and more; of those of one and two, everything that doesn't stand by itself is one.
constexpr Text longEndings[] = {u"ました",   u"ません",   u"ましょう", u"しょう", u"ください", u"なかっ",
                                u"なかった", u"なければ", u"ければ",   u"られる", u"られた",   u"させる",
                                u"させて",   u"たかった", u"ている",   u"ていた", u"ており",   u"てます",
                                u"ちゃう",   u"ちゃった", u"んじゃ",   u"そうだ", u"かった"};
// What makes verbs and persons of nouns: "勉強した", "田中さん".
constexpr Text nounEndings[] = {u"した", u"して", u"しま", u"しよ", u"しよう", u"しない", u"すれ", u"され",
                                u"さん", u"たち", u"さま", u"くん", u"ちゃん", u"がた",   u"しい", u"しく"};
constexpr Text personEndings[] = {u"さん", u"たち", u"さま", u"くん", u"ちゃん", u"がた", u"ら"};
// Nouns of one character that begin no verb, and those of two that nobody "does".
constexpr Text plainNouns =
    u"私僕俺君彼誰何今皆朝夜昼春夏秋冬猫犬鳥魚人本水車家店駅町国金男女父母兄姉弟妹体頭"
    u"顔手足目耳口心声事物所年月日週方色花木山川海空";
constexpr Text timeNouns[] = {u"毎日", u"毎週", u"毎月", u"毎年", u"毎朝", u"毎晩", u"今日", u"明日",
                              u"昨日", u"今朝", u"今夜", u"今週", u"来週", u"先週", u"今月", u"来月",
                              u"先月", u"今年", u"来年", u"去年", u"昨夜", u"午前", u"午後", u"最近",
                              u"全部", u"全員", u"自分", u"一緒", u"時々", u"本当"};
// Verbs whose "て" is "で" without a "ん" before: "急いで".
constexpr Text voicedVerbs = u"急泳脱騒注稼防繋継研漕嗅仰凌";

template <std::size_t count>
bool holds(const Text (&list)[count], Text text) {
    return std::ranges::find(list, text) != std::end(list);
}
template <std::size_t count>
bool startsWithOne(const Text (&list)[count], Text text) {
    return std::ranges::any_of(list, [&](Text start) { return text.starts_with(start); });
}

bool isHiragana(char16_t c) {
    return (c >= u'ぁ' && c <= u'ゟ') || c == u'ー';
}
bool isHiragana(Text text) {
    return std::ranges::all_of(text, [](char16_t c) { return isHiragana(c); });
}
bool isKanji(char16_t c) {
    return (c >= u'\u3400' && c <= u'\u9fff') || c == u'々';
}
bool isPrefix(Text text) {
    return text == u"お" || text == u"ご";
}

/// How many characters at the end are no hiragana.
std::size_t nounLength(Text text) {
    const auto end = std::find_if(text.rbegin(), text.rend(), [](char16_t c) { return isHiragana(c); });
    return static_cast<std::size_t>(end - text.rbegin());
}

/// What reads like a particle and is the middle of a verb or an adjective.
bool isHidden(const JapaneseWord& word, Text piece, Text behind) {
    constexpr Text ofKnowing[] = {u"な", u"ん", u"り", u"っ", u"る", u"れ", u"ず"};
    constexpr Text ofReceiving[] = {u"ら", u"り", u"っ"};
    constexpr Text ofNot[] = {u"けれ", u"くて", u"くな", u"かっ", u"きゃ"};
    constexpr Text afterKana[] = {u"け", u"く", u"き", u"い"};
    const bool behindKanji = isKanji(word.last.back());
    if (piece == u"から")
        return word.whole == u"わ" && startsWithOne(ofKnowing, behind);
    if (piece == u"も")
        return word.last.ends_with(u'て') && startsWithOne(ofReceiving, behind);
    if (piece == u"な")
        return (behindKanji || word.whole.size() > 1) && startsWithOne(ofNot, behind);
    if (piece == u"かな")
        return behindKanji && startsWithOne(afterKana, behind);
    if (piece == u"か" || piece == u"しか")
        return (behindKanji || word.last.ends_with(u'し')) && behind.starts_with(u"った");
    if (piece == u"なら")
        return word.last.ends_with(u'ば') && startsWithOne(ofKnowing, behind);
    if (piece == u"よう")  // "食べよう", but "早い ようです"
        return (behindKanji || word.whole.size() > 1) &&
               Text(u"いるただのなくうむすつぐぶぬ").find(word.last.back()) == Text::npos &&
               !(behindKanji && plainNouns.find(word.last.back()) != Text::npos) && nounLength(word.last) < 2;
    if (piece == u"じゃ")
        return word.last == u"ん" && word.whole.size() > 1;
    return false;
}

/// Goes on with a piece that `isHidden`, and with others that are particles only by themselves.
bool goesOnHidden(const JapaneseWord& word, Text piece, Text behind) {
    constexpr Text ofDoing[] = {u"り", u"ら", u"る", u"れ", u"ろ", u"ば"};
    constexpr Text ofReceiving[] = {u"らっ", u"らい", u"らえ", u"らわ", u"らお"};
    if (word.whole != word.last)
        return true;
    return (word.last == u"や" && startsWithOne(ofDoing, piece)) ||
           (word.last == u"も" && startsWithOne(ofReceiving, std::u16string(piece).append(behind))) ||
           (word.last == u"な" && piece.starts_with(u'け'));
}

/// "だ" and "で" behind a verb: "読んだ", "急いで", but "学生だ".
bool takesVoiced(const JapaneseWord& word, Text piece, Text behind) {
    const auto length = word.whole.size();
    if (word.last.ends_with(u'ん'))
        return word.last == u"ん" || word.last.ends_with(u"せん") ||
               (length >= 2 && isKanji(word.whole[length - 2]));
    if (word.last.ends_with(u"ない"))
        return piece == u"で" && !behind.starts_with(u'し') && !behind.starts_with(u'す');
    return length >= 2 && word.whole.ends_with(u'い') &&
           voicedVerbs.find(word.whole[length - 2]) != Text::npos;
}

bool takesNounEnding(const JapaneseWord& word, Text piece, std::size_t length) {
    if (length == 1 && plainNouns.find(word.last.back()) != Text::npos && word.whole.size() == 1)
        return holds(personEndings, piece);
    if (length >= 2 && holds(timeNouns, word.whole))
        return false;
    if (length == 1 || word.whole == u"出来")
        return piece.size() <= 2 || holds(longEndings, piece);
    return piece.size() == 1 || holds(nounEndings, piece);
}

/// "早く" "して", but "美しく" "ない".
bool isAdverb(const JapaneseWord& word, Text piece) {
    return word.whole.size() >= 2 && word.last.ends_with(u'く') && !word.last.starts_with(u'て') &&
           (piece.starts_with(u'し') || piece.starts_with(u"なっ") || piece.starts_with(u"なり"));
}

}  // namespace

bool continuesJapanese(const JapaneseWord& word, Text piece, Text behind) {
    const auto last = word.last;
    if (last.empty() || isPrefix(last))
        return !last.empty();
    if (last == u"頑" && piece.starts_with(u'張'))
        return true;
    if (!isHiragana(piece) || piece.empty() || isPrefix(piece))
        return false;
    if (isHidden(word, piece, behind))
        return true;
    if (piece == u"だ" || piece == u"で")
        return takesVoiced(word, piece, behind);
    if (word.whole == u"ん" && piece == u"です")
        return true;  // "行く" "んです"
    if (last == u"で" && piece.starts_with(u'し'))
        return true;  // "でした", "でしょう"
    if (holds(helpers, piece))
        return last.ends_with(u'て') || (last.ends_with(u'で') && word.whole.size() > 1);
    if (holds(standing, piece) || (holds(standing, last) && !goesOnHidden(word, piece, behind)))
        return false;
    if (const auto length = nounLength(last); length > 0)
        return takesNounEnding(word, piece, length);
    constexpr Text plainForms = u"いるたうくすだ";
    if (isAdverb(word, piece) || (piece == u"ん" && plainForms.find(last.back()) != Text::npos))
        return false;
    if (last.size() >= 4 && isHiragana(last))
        return holds(surestEndings, piece);
    return piece.size() <= 2 || holds(longEndings, piece);
}

}  // namespace korvane
