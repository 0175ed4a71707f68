// Texts as a recogniser writes them, and the words that a person reads: "|" parts two words, "~" stands for a
// no-break space.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/speech/TokenWords.h"

namespace korvane {

struct WordCase {
    const char* locale;
    const char* text;
    const char* words;
};

inline std::string shown(const std::vector<TimedWord>& words) {
    std::string line;
    for (const auto& word : words)
        line += (line.empty() ? "" : "|") + word.text;
    for (auto at = line.find("\u00a0"); at != std::string::npos; at = line.find("\u00a0"))
        line.replace(at, 2, "~");
    return line;
}

/// The whole text as one token of a second.
inline std::vector<TimedWord> wordsOf(const std::string& text, const char* locale) {
    const std::vector<HeardToken> tokens{{text, 0, 16000}};
    return wordsOfTokens(tokens, Locale{locale});
}

inline const std::vector<WordCase>& wordCases() {
    static const std::vector<WordCase> cases{
        {"en-US", " Hello, world!", "Hello,|world!"},
        {"en-US", " I don't know. It's John's, isn't it?", "I|don't|know.|It's|John's,|isn't|it?"},
        {"en-US", " It’s rock ’n’ roll", "It’s|rock|’n’|roll"},
        {"en-US", " a well-known, state-of-the-art idea", "a|well-known,|state-of-the-art|idea"},
        {"en-US", " It costs $5, or 3.14% of $1,000 at 10:30.", "It|costs|$5,|or|3.14%|of|$1,000|at|10:30."},
        {"en-US", " In the U.S. at 5 p.m., e.g. today", "In|the|U.S.|at|5|p.m.,|e.g.|today"},
        {"en-US", " [music] Hello (laughs). *applause* Bye [BLANK_AUDIO]", "Hello.|Bye"},
        {"en-US", "♪ La la la ♪", "La|la|la"},
        {"en-US", "<|0.00|> Hi<|2.40|><|2.40|> there[_TT_120]", "Hi|there"},
        {"en-US", " - Hello. - Hi - there.", "-~Hello.|-~Hi~-|there."},
        {"en-US", " well...so yes—no, wait… what?!", "well...|so|yes—|no,|wait…|what?!"},
        {"en-US", " He said: \"Come here\" and \" left \"", "He|said:|\"Come|here\"|and|\"~left~\""},
        {"en-US", " Tom & Jerry, AT&T, C++ and C# @ 50", "Tom|&|Jerry,|AT&T,|C++|and|C#|@|50"},
        {"en-US", " apple(s) since (2020) in 2020 500 people", "apple(s)|since|(2020)|in|2020|500|people"},
        {"en-US", " from 1990–1995 minus 5 °C", "from|1990–1995|minus|5~°C"},
        {"en-US", " a [b", "a|b"},
        {"en-US", " Smile 😀 👍🏽 now", "Smile~😀~👍🏽|now"},
        {"en-US", " It's *very* important. He *really* said it.", "It's|very|important.|He|really|said|it."},
        {"en-US", " f***ing hell, that's all I wanted to say about this s**t today",
         "f***ing|hell,|that's|all|I|wanted|to|say|about|this|s**t|today"},
        {"en-US", " What the f*** is **that**, *it*'s un*believ*able *and more",
         "What|the|f***|is|that,|it's|un*believ*able|and|more"},
        {"en-US", " *laughs* Hello there. *coughs loudly* *I know.* *Really* John",
         "Hello|there.|I|know.|Really|John"},
        {"en-US", " 2 * 3 = 6, 2*3 and 2* 3", "2|*|3|=|6,|2*3|and|2|3"},
        {"en-US", " The plan (which failed) was good. (door slams) Well.",
         "The|plan|(which|failed)|was|good.|Well."},
        {"en-US", " It was (like) totally (you know) fine (5 times)",
         "It|was|(like)|totally|(you|know)|fine|(5|times)"},
        {"en-US", " Um (um) I (laughing nervously) mean (I love music). (Speaking foreign language)",
         "Um|I|mean|(I|love|music)."},
        {"en-US", " >> Hello. >> Hi a >> b", "Hello.|Hi|a|b"},
        {"en-US", " \"*Never*,\" she said. *Never*! (Yes) I know.",
         "\"Never,\"|she|said.|Never!|(Yes)|I|know."},
        {"en-US", " P!nk came.Yes!No and yes!no", "P!nk|came.Yes!|No|and|yes!|no"},
        {"en-US", " I said *music* and not *noise*. She *sings* (er) and he *screamed* at a (cheerful) man.",
         "I|said|music|and|not|noise.|She|sings|and|he|screamed|at|a|(cheerful)|man."},
        {"en-US", " *Music* I love. (In silence) he (ride) sat in the (ER) for (noise, music) *laughs*",
         "Music|I|love.|(In|silence)|he|(ride)|sat|in|the|(ER)|for|(noise,|music)|laughs"},

        {"ru-RU", " Привет, мир!", "Привет,|мир!"},
        {"ru-RU", " Москва — столица России.", "Москва~—|столица|России."},
        {"ru-RU", " — Как дела? — Хорошо.", "—~Как|дела?|—~Хорошо."},
        {"ru-RU", " хлеб, молоко и т. д., т.е. еда и т. п.", "хлеб,|молоко|и|т.~д.,|т.е.|еда|и|т.~п."},
        {"ru-RU", " Это стоит 1 000 ₽, то есть 12 345 678 рублей.",
         "Это|стоит|1~000~₽,|то|есть|12~345~678|рублей."},
        {"ru-RU", " число 3,14 % в 10:30", "число|3,14~%|в|10:30"},
        {"ru-RU", " [музыка] Да (смех) нет. *аплодисменты*", "Да|нет."},
        {"ru-RU", " кое-кто по-русски из-за ёлки", "кое-кто|по-русски|из-за|ёлки"},
        {"ru-RU", " Это я. Да. «Война и мир» А. С. Пушкин", "Это|я.|Да.|«Война|и|мир»|А.|С.|Пушкин"},
        {"ru-RU", " № 5 и §7", "№~5|и|§7"},
        {"ru-RU", " и т. д. г. Москва, т. е. он, к. т. н. Петров",
         "и|т.~д.|г.|Москва,|т.~е.|он,|к.~т.~н.|Петров"},
        {"ru-RU", " Он *очень* рад (так сказать), (смех в зале) да", "Он|очень|рад|(так|сказать),|да"},
        {"ru-RU", " Мне нравится *музыка* и *смех* (громкий смех) детей (laughs)",
         "Мне|нравится|музыка|и|смех|детей|(laughs)"},

        {"uk-UA", " Привіт, світе!", "Привіт,|світе!"},
        {"uk-UA", " М'яч, п’ять, об'єкт і комп\u02bcютер", "М'яч,|п’ять,|об'єкт|і|комп\u02bcютер"},
        {"uk-UA", " Київ — столиця України.", "Київ~—|столиця|України."},
        {"uk-UA", " яблука, груші і т. д. та т. п.", "яблука,|груші|і|т.~д.|та|т.~п."},
        {"uk-UA", " Ціна 5 000 ₴ або 7,5 %", "Ціна|5~000~₴|або|7,5~%"},
        {"uk-UA", " [музика] Так (сміх). Ні", "Так.|Ні"},
        {"uk-UA", " будь-який по-перше", "будь-який|по-перше"},
        {"uk-UA", " Ї\u0301жак і ґанок", "Ї\u0301жак|і|ґанок"},
        {"uk-UA", " Мені подобається *музика* і *сміх* (сміється) дітей",
         "Мені|подобається|музика|і|сміх|дітей"},

        {"fr-FR", " Bonjour, le monde !", "Bonjour,|le|monde~!"},
        {"fr-FR", " Quoi ? Non ; si : voilà", "Quoi~?|Non~;|si~:|voilà"},
        {"fr-FR", " L'homme qu'il a vu aujourd’hui", "L'homme|qu'il|a|vu|aujourd’hui"},
        {"fr-FR", " Il dit : « Bonjour à tous » et part.", "Il|dit~:|«~Bonjour|à|tous~»|et|part."},
        {"fr-FR", " Dit-il, a-t-il, est-ce que", "Dit-il,|a-t-il,|est-ce|que"},
        {"fr-FR", " 1\u202f000,50\u00a0€ soit 20 %", "1~000,50~€|soit|20~%"},
        {"fr-FR", " p. ex. M. Dupont à 10 h 30", "p.~ex.|M.|Dupont|à|10|h|30"},
        {"fr-FR", " [Musique] Oui (rires) ! *Applaudissements*", "Oui~!"},
        {"fr-FR", " de\u0301ja\u0300 vu, œuvre", "déjà|vu,|œuvre"},
        {"fr-FR", " le n° 5 200 fois, soit 20 100 personnes", "le|n°|5|200|fois,|soit|20~100|personnes"},
        {"fr-FR", " Elle *rit* (rit) avec (er) la *musique* (et silence) de (um) fond",
         "Elle|rit|avec|(er)|la|musique|(et|silence)|de|(um)|fond"},

        {"de-DE", " Hallo, Welt!", "Hallo,|Welt!"},
        {"de-DE", " Das ist z. B. gut, d. h. u. a. m. schön.", "Das|ist|z.~B.|gut,|d.~h.~u.~a.~m.|schön."},
        {"de-DE", " Er sagte: „Komm her“ und ‚ja‘", "Er|sagte:|„Komm|her“|und|‚ja‘"},
        {"de-DE", " Das kostet 5 € oder 1.000,50 Euro, 3,5 %", "Das|kostet|5~€|oder|1.000,50|Euro,|3,5~%"},
        {"de-DE", " E-Mail, Haus- und Gartentür, Größe", "E-Mail,|Haus-|und|Gartentür,|Größe"},
        {"de-DE", " um 10:30 Uhr am 3. Mai", "um|10:30|Uhr|am|3.|Mai"},
        {"de-DE", " [Musik] Ja (lacht) – nein", "Ja~–|nein"},
        {"de-DE", " z. [lacht] B. kostet 5 (Pause) €", "z.|B.|kostet|5|€"},
        {"de-DE", " Wie geht's? – Gut.", "Wie|geht's?|–~Gut."},
        {"de-DE", " Das ist *sehr* wichtig und **wirklich** gut", "Das|ist|sehr|wichtig|und|wirklich|gut"},
        {"de-DE", " *Musik* Hallo. Das ist (glaube ich) gut (lacht).", "Hallo.|Das|ist|(glaube|ich)|gut."},
        {"de-DE", " Nr. 7 120 Meter, 7 120 Meter und 1990 200 Leute",
         "Nr.|7|120|Meter,|7~120|Meter|und|1990|200|Leute"},
        {"de-DE", " Nein, *er* war es (er) und es geht *um* (um) dich (ähm) und *Musik*.",
         "Nein,|er|war|es|(er)|und|es|geht|um|(um)|dich|und|Musik."},
        {"de-DE", " *Husten* Sie, *Lachen* ist gut", "Husten|Sie,|Lachen|ist|gut"},

        {"es-ES", " ¡Hola, mundo!", "¡Hola,|mundo!"},
        {"es-ES", " ¿Qué tal? ¿ Y tú ?", "¿Qué|tal?|¿~Y|tú~?"},
        {"es-ES", " Los EE. UU. y p. ej. España", "Los|EE.~UU.|y|p.~ej.|España"},
        {"es-ES", " Cuesta 1 000 € o 3,14 %, a las 10:30", "Cuesta|1~000~€|o|3,14~%,|a|las|10:30"},
        {"es-ES", " [música] Sí (risas) ¡[aplausos] no!", "Sí|¡no!"},
        {"es-ES", " —Hola —dijo él—. Adiós", "—Hola|—dijo|él—.|Adiós"},
        {"es-ES", " nin\u0303o y pingüino", "niño|y|pingüino"},
        {"es-ES", " franco-español, «así»", "franco-español,|«así»"},
        {"es-ES", " Me gusta la *música* y (eh) no el *ruido* (um) fuerte",
         "Me|gusta|la|música|y|no|el|ruido|(um)|fuerte"},

        {"it-IT", " Ciao, mondo!", "Ciao,|mondo!"},
        {"it-IT", " L'amico dell'altro, un po' d’acqua", "L'amico|dell'altro,|un|po'|d’acqua"},
        {"it-IT", " Perché? È così.", "Perché?|È|così."},
        {"it-IT", " Costa 5 € o 1.000 euro, il 3,14 %", "Costa|5~€|o|1.000|euro,|il|3,14~%"},
        {"it-IT", " p. es. alle 10:30", "p.~es.|alle|10:30"},
        {"it-IT", " [musica] Sì (ride). *applausi* No", "Sì.|No"},
        {"it-IT", " «Buongiorno» – disse", "«Buongiorno»~–|disse"},
        {"it-IT", " italo-francese po\u2019", "italo-francese|po\u2019"},
        {"it-IT", " Lei *ride* (ride) e la *musica* (rit) continua", "Lei|ride|e|la|musica|(rit)|continua"},

        {"zh-CN", "你好，世界！", "你好，|世界！"},
        {"zh-CN", "今天天气很好。", "今天|天气|很好。"},
        {"zh-CN", "我们在上海学习中文", "我们|在|上海|学习|中文"},
        {"zh-CN", "他说：“你好吗？”", "他|说：|“你好|吗？”"},
        {"zh-CN", "苹果5个，香蕉3.14元，占20%。", "苹果|5个，|香蕉|3.14元，|占|20%。"},
        {"zh-CN", "我用iPhone学习，don't worry", "我|用|iPhone|学习，|don't|worry"},
        {"zh-CN", "（笑）你好[音乐]世界(掌声)。【鼓掌】", "你好|世界。"},
        {"zh-CN", "现在是10：30，价格¥500", "现在|是|10：30，|价格|¥500"},
        {"zh-CN", "《红楼梦》、“三国”……", "《红楼梦》、|“三国”……"},
        {"zh-CN", "你好 世界", "你好|世界"},
        {"zh-CN", "“你好！”2024年，“好”OK，5个月《我们》2次",
         "“你好！”|2024年，|“好”|OK，|5个月|《我们》|2次"},
        {"zh-CN", "(真的)5次他说\"好\"OK说\"OK\"好，他‘好’2次don’t好",
         "(真的)|5次|他|说|\"好\"|OK|说|\"OK\"|好，|他|‘好’|2次|don’t|好"},
        {"zh-CN", "这*很*重要，他说（真的）很好（背景音乐）。（笑）", "这|很|重要，|他|说|（真的）|很好。"},
        {"zh-CN", "我喜欢（音乐）和电影（笑）和*音乐*（我喜欢音乐）。",
         "我|喜欢|（音乐）|和|电影|和|音乐|（我|喜欢|音乐）。"},

        {"ja-JP", "こんにちは、世界！", "こんにちは、|世界！"},
        {"ja-JP", "私は学生です。", "私|は|学生|です。"},
        {"ja-JP", "「おはよう」と言った。", "「おはよう」|と|言った。"},
        {"ja-JP", "大阪へ行きました。楽しいです", "大阪|へ|行きました。|楽しい|です"},
        {"ja-JP", "カ\u3099ラスのコッフ\u309a", "ガラス|の|コップ"},
        {"ja-JP", "（拍手）ありがとう[音楽]ございます（笑）", "ありがとう|ございます"},
        {"ja-JP", "5月3日に3.14％、￥500です", "5月|3日|に|3.14％、|￥500|です"},
        {"ja-JP", "iPhoneを買った", "iPhone|を|買った"},
        {"ja-JP", "コーヒーを飲む", "コーヒー|を|飲む"},
        {"ja-JP", "お名前は何ですか。ご飯を食べませんでした",
         "お名前|は|何|です|か。|ご飯|を|食べませんでした"},
        {"ja-JP", "日本語を勉強しています。", "日本語|を|勉強しています。"},
        {"ja-JP", "なんとなくわかった。よろしくお願いいたします",
         "なんとなく|わかった。|よろしく|お願いいたします"},
        {"ja-JP", "彼は本を読んだ、学生だ", "彼|は|本|を|読んだ、|学生|だ"},
        {"ja-JP", "わからない。わからないんですけど、わかりました",
         "わからない。|わからない|んです|けど、|わかりました"},
        {"ja-JP", "難しいかもしれません。昨日ねこを見た", "難しい|かも|しれません。|昨日|ねこ|を|見た"},
        {"ja-JP", "毎日する。明日くる。犬なら猫じゃない", "毎日|する。|明日|くる。|犬|なら|猫|じゃ|ない"},
        {"ja-JP", "今日そば食べた。三人くらい、僕らは私たち",
         "今日|そば|食べた。|三人|くらい、|僕ら|は|私たち"},
        {"ja-JP", "行かなければならない。食べよう。高かったです",
         "行かなければならない。|食べよう。|高かった|です"},
        {"ja-JP", "歌っていた。行ってきた。見せてもらった。やってみる",
         "歌っていた。|行ってきた。|見せてもらった。|やってみる"},
        {"ja-JP", "急いで行った。忘れないで。犬いる。早くして",
         "急いで|行った。|忘れないで。|犬|いる。|早く|して"},
        {"ja-JP", "彼にもらった。すみませんでした。それやばくない",
         "彼|に|もらった。|すみませんでした。|それ|やばくない"},
        {"ja-JP", "頑張ってください。飲んじゃった。猫もらくだも",
         "頑張ってください。|飲んじゃった。|猫|も|らくだ|も"},
        {"ja-JP", "「行きました」と言う。3か月、3ヶ月前", "「行きました」|と|言う。|3か月、|3ヶ月|前"},
        {"ja-JP", "私は（音楽）が好き（えーと）で*音楽*を聞く", "私|は|（音楽）|が|好き|で|音楽|を|聞く"},
    };
    return cases;
}

}  // namespace korvane
