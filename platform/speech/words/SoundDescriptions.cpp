#include "platform/speech/words/SoundDescriptions.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace korvane {
namespace {

using Characters = std::span<const TokenCharacter>;

// All in small letters. What ends with an asterisk is the beginning of a word.
constexpr std::u16string_view sounds[] = {
    u"laugh*", u"chuckl*", u"giggl*", u"applau*", u"clap", u"claps", u"clapping", u"cheer*", u"music*",
    u"sigh", u"sighs", u"sighing", u"cough*", u"sniff*", u"sneez*", u"gasp*", u"groan*", u"grunt*",
    u"scream*", u"shouting", u"sob", u"sobs", u"sobbing", u"crying", u"whispers", u"whispering", u"whistl*",
    u"humming", u"hums", u"singing", u"sings", u"silence", u"inaudible", u"unintelligible", u"indistinct",
    u"noise", u"noises", u"static", u"beep*", u"bleep*", u"ringing", u"rings", u"knocking", u"barking",
    u"footsteps", u"yawn*", u"burp*", u"inhale*", u"exhale*", u"breathing", u"crosstalk", u"snor*",
    u"chatter*", u"pause",
    // French
    u"rire", u"rires", u"rit", u"rient", u"ricane*", u"musique*", u"applaudi*", u"toux", u"tousse*",
    u"soupir*", u"bruit", u"bruits", u"chuchot*", u"cris", u"pleurs", u"sanglot*", u"siffle*", u"sifflement*",
    u"éternu*", u"gémi*",
    // German
    u"lacht", u"lachen", u"lachend", u"gelächter", u"kichert", u"kichern", u"musik", u"applaus", u"beifall",
    u"jubel", u"seufz*", u"hust*", u"räusper*", u"stöhn*", u"schnieft", u"stille", u"flüster*", u"schreie",
    u"weint", u"weinen", u"pfeift", u"pfeifen", u"summt", u"geräusch", u"geräusche", u"rauschen", u"piept",
    u"piepen", u"klopfen", u"unverständlich", u"niest", u"gähnt",
    // Spanish and Italian
    u"risa", u"risas", u"ríe", u"ríen", u"riendo", u"música", u"aplauso*", u"aplaud*", u"tose", u"tos",
    u"suspir*", u"silencio", u"ruido", u"ruidos", u"susurr*", u"llanto", u"gritos", u"estornud*",
    u"ininteligible", u"risate", u"ride", u"ridono", u"ridendo", u"musica", u"applaus*", u"tosse",
    u"tossisce", u"sospir*", u"silenzio", u"rumore", u"rumori", u"sussurr*", u"pianto", u"incomprensibile",
    u"inudibile",
    // Russian and Ukrainian
    u"смех", u"смеё*", u"смеет*", u"смею*", u"хохот*", u"хихик*", u"музыка", u"аплодис*", u"аплодир*",
    u"овации", u"вздох*", u"вздыха*", u"кашель", u"кашля*", u"плач", u"плачет", u"шёпот", u"шепот", u"шепч*",
    u"крик", u"крики", u"тишина", u"пауза", u"шум", u"неразборчиво", u"свист", u"чихает", u"стон", u"сміх",
    u"сміє*", u"сміют*", u"регоч*", u"музика", u"оплески", u"зітха*", u"плаче", u"шепіт", u"крики", u"тиша",
    u"нерозбірливо",
    // Fillers
    u"um", u"uh", u"uhm", u"er", u"erm", u"hm", u"hmm", u"mm", u"mhm", u"ah", u"euh", u"heu", u"äh", u"ähm",
    u"eh", u"ehm", u"э", u"ээ", u"эээ", u"эм", u"мм", u"嗯", u"呃", u"啊", u"唔", u"えー", u"えーと",
    u"えっと", u"うーん", u"あー", u"んー"};

// What goes with them and is no sound by itself.
constexpr std::u16string_view besides[] = {
    u"soft",     u"softly",    u"loud",       u"loudly",      u"quiet",     u"quietly",    u"upbeat",
    u"dramatic", u"gentle",    u"slow",       u"tense",       u"sad",       u"light",      u"piano",
    u"guitar",   u"theme",     u"playing",    u"plays",       u"continues", u"stops",      u"fades",
    u"in",       u"the",       u"background", u"and",         u"nervously", u"heavily",    u"deeply",
    u"audience", u"crowd",     u"phone",      u"dog",         u"douce",     u"de",         u"fond",
    u"dans",     u"la",        u"salle",      u"et",          u"sich",      u"leise",      u"laut",
    u"ruhige",   u"spannende", u"im",         u"hintergrund", u"publikum",  u"und",        u"suave",
    u"fondo",    u"del",       u"público",    u"y",           u"di",        u"sottofondo", u"pubblico",
    u"e",        u"тихая",     u"громкая",    u"спокойная",   u"тихо",      u"громко",     u"играет",
    u"в",        u"зале",      u"на",         u"фоне",        u"и",         u"тиха",       u"гучна",
    u"тихий",    u"грає",      u"у",          u"залі",        u"фоні",      u"та"};

// Chinese and Japanese descriptions end with these, whatever stands before: "背景音乐", "観客の拍手".
constexpr std::u16string_view unspacedSounds[] = {
    u"笑",   u"大笑", u"笑声", u"笑聲", u"哈哈", u"音乐", u"音樂", u"音楽",   u"掌声",  u"掌聲", u"鼓掌",
    u"拍手", u"歓声", u"欢呼", u"歡呼", u"叹气", u"嘆氣", u"咳嗽", u"咳払い", u"哭声",  u"哭聲", u"沉默",
    u"沈黙", u"噪音", u"雑音", u"爆笑", u"苦笑", u"笑い", u"泣き", u"ため息", u"笑い声"};
constexpr std::size_t longestUnspaced = 8;

constexpr std::ptrdiff_t mostWords = 5;
constexpr std::ptrdiff_t mostUnspaced = 12;

template <std::size_t count>
bool holds(const std::u16string_view (&list)[count], std::u16string_view word) {
    return std::ranges::any_of(list, [&](std::u16string_view known) {
        return known.ends_with(u'*') ? word.starts_with(known.substr(0, known.size() - 1)) : word == known;
    });
}

bool endsUnspaced(std::u16string_view word) {
    return word.size() <= longestUnspaced &&
           std::ranges::any_of(unspacedSounds, [&](auto sound) { return word.ends_with(sound); });
}

std::vector<std::u16string> wordsOf(Characters content) {
    std::vector<std::u16string> words;
    bool inside = false;
    for (const auto& character : content) {
        if (character.isLetter() && !inside)
            words.emplace_back();
        inside = character.isLetter();
        if (!inside)
            continue;
        icu::UnicodeString small(character.text.data(), static_cast<std::int32_t>(character.text.size()));
        small.toLower();
        words.back().append(small.getBuffer(), static_cast<std::size_t>(small.length()));
    }
    return words;
}

bool hasDigit(Characters content) {
    return std::ranges::any_of(content, &TokenCharacter::isDigit);
}

}  // namespace

bool isSoundDescription(Characters content) {
    const auto words = wordsOf(content);
    const auto isSound = [](const auto& word) { return holds(sounds, word) || endsUnspaced(word); };
    return !hasDigit(content) && std::ranges::any_of(words, isSound) &&
           std::ranges::all_of(words,
                               [&](const auto& word) { return isSound(word) || holds(besides, word); });
}

bool mayBeDescription(Characters content) {
    static constexpr std::u32string_view sentenceEnds = U".!?…。！？";
    const bool isSentence = std::ranges::any_of(
        content, [](char32_t c) { return sentenceEnds.find(c) != std::u32string_view::npos; },
        &TokenCharacter::base);
    return !isSentence && !hasDigit(content) && std::ssize(wordsOf(content)) <= mostWords &&
           std::ranges::count_if(content, &TokenCharacter::isUnspaced) <= mostUnspaced;
}

}  // namespace korvane
