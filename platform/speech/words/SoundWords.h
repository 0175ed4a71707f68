// The words by which recognisers name sounds, for each language: "rit" is laughter in French only, and "er"
// is a filler in English and a person in German.
#pragma once

#include <string_view>

namespace korvane {

/// Lists of whole words in small letters, parted by spaces. Beginnings of words would take others along:
/// "cheer" is one sound of a crowd, "cheerful" is none.
struct SoundWords {
    std::u16string_view language;
    std::u16string_view sounds;   ///< laughter, music and fillers
    std::u16string_view besides;  ///< go with a sound and are none by themselves
    std::u16string_view links;    ///< stand between the others: "laughs and claps"
    /// Sounds that a sentence without spaces may just as well speak of: "我喜欢（音乐）和电影".
    std::u16string_view nouns = {};
};

constexpr SoundWords soundWords[] = {
    {u"en",
     u"laugh laughs laughed laughing laughter chuckle chuckles chuckling giggle giggles giggling applause "
     u"applauds applauding clap claps clapping cheer cheers cheering music sigh sighs sighing cough coughs "
     u"coughing sniff sniffs sniffing sniffle sniffles sniffling sneeze sneezes sneezing gasp gasps gasping "
     u"groan groans groaning grunt grunts grunting scream screams screaming shouting sob sobs sobbing crying "
     u"whispers whispering whistle whistles whistling hums humming sings singing silence inaudible "
     u"unintelligible indistinct noise noises static beep beeps beeping bleep bleeps bleeping rings ringing "
     u"knocking barking footsteps yawn yawns yawning burp burps burping inhale inhales inhaling exhale "
     u"exhales exhaling breathing crosstalk snore snores snoring chatter chattering pause "
     u"um umm uh uhh uhm er erm hm hmm mmm mhm ah eh",
     u"soft softly loud loudly quiet quietly upbeat dramatic gentle slow tense sad light piano guitar theme "
     u"playing plays continues stops fades background nervously heavily deeply audience crowd phone dog mm",
     u"in the and"},
    {u"fr",
     u"rire rires rit rient riant ricane ricanement ricanements musique applaudissement applaudissements "
     u"applaudit applaudissent toux tousse toussote soupir soupirs soupire bruit bruits chuchote "
     u"chuchotement "
     u"chuchotements cris pleurs sanglot sanglots sanglote siffle sifflement sifflements éternue éternuement "
     u"gémit gémissement gémissements silence inaudible euh heu hm hmm mmm",
     u"douce doucement fort forte légère dramatique public foule salle fond ambiance générique nerveusement",
     u"de d du dans la le en et"},
    {u"de",
     u"lacht lachen lachend gelächter kichert kichern kichernd musik applaus beifall jubel jubelt seufzt "
     u"seufzen seufzend seufzer hustet husten hustend räuspert räuspern stöhnt stöhnen stöhnend schnieft "
     u"schniefen stille flüstert flüstern flüsternd schreie weint weinen weinend pfeift pfeifen summt summen "
     u"geräusch geräusche rauschen piept piepen klopfen unverständlich niest niesen gähnt gähnen pause "
     u"äh ähm öh öhm ehm hm hmm mhm",
     u"leise laut leises lautes ruhige spannende hintergrund publikum sich", u"im und"},
    {u"es",
     u"risa risas ríe ríen riendo carcajada carcajadas música aplauso aplausos aplaude aplauden tos tose "
     u"tosen "
     u"suspira suspiro suspiros silencio ruido ruidos susurra susurro susurros llanto llora grito gritos "
     u"estornuda estornudo ininteligible inaudible eh ehm em hm hmm mmm",
     u"suave fuerte dramática fondo público", u"de del en y"},
    {u"it",
     u"risata risate ride ridono ridendo ridacchia musica applauso applausi applaude applaudono tosse "
     u"tossisce "
     u"sospira sospiro sospiri silenzio rumore rumori sussurra sussurro sussurri pianto piange "
     u"incomprensibile "
     u"inudibile eh ehm uhm hm hmm mmm",
     u"dolce forte drammatica sottofondo pubblico", u"di del in e"},
    {u"ru",
     u"смех смеётся смеется смеются смеясь хохот хохочет хохочут хихикает хихикают хихиканье музыка "
     u"аплодисменты аплодирует аплодируют овации вздох вздохи вздыхает вздыхают кашель кашляет кашляют плач "
     u"плачет плачут шёпот шепот шепчет шепчут крик крики тишина пауза шум неразборчиво свист чихает стон "
     u"стонет э ээ эээ эм эмм ммм хм хмм",
     u"тихая громкая спокойная тихий громкий тихо громко играет звучит зале фоне", u"в на и"},
    {u"uk",
     u"сміх сміється сміються сміючись хихикає хихикають регіт регоче регочуть музика оплески зітхає "
     u"зітхання "
     u"кашель кашляє плач плаче плачуть шепіт шепоче крик крики тиша пауза шум нерозбірливо свист чхає "
     u"стогін "
     u"стогне еее ем хм гм ммм",
     u"тиха гучна спокійна тихий гучний тихо гучно грає звучить залі фоні", u"у в на і та"},
    {u"zh", u"笑 大笑 爆笑 苦笑 偷笑 狂笑 轻笑 輕笑 哈哈 哈哈哈 嗯 呃 啊 唔",
     u"背景 轻柔 輕柔 轻快 輕快 观众 觀眾 全场 全場 众人 眾人 大家 热烈 熱烈 响起 響起", u"的",
     u"笑声 笑聲 音乐 音樂 掌声 掌聲 鼓掌 拍手 欢呼 歡呼 欢呼声 歡呼聲 叹气 嘆氣 咳嗽 咳嗽声 咳嗽聲 哭声 "
     u"哭聲 沉默 "
     u"噪音 雜音 杂音"},
    {u"ja", u"笑 大笑 爆笑 苦笑 えー えーと ええと えっと うーん あー んー あのー",
     u"背景 静かな 軽快な 大きな 観客 会場 一同", u"の",
     u"笑い 笑い声 音楽 拍手 歓声 咳 咳払い ため息 泣き声 沈黙 雑音 騒音"},
};

}  // namespace korvane
