// Nine languages through the real worker, with models that say what they are told: right words, right times.
#include <gtest/gtest.h>

#include <cmath>
#include <future>
#include <numeric>

#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/platform/speech/SpokenFixture.h"
#include "tests/platform/speech/SyntheticSound.h"
#include "tests/platform/speech/WordTable.h"

namespace korvane {
namespace {

using fixtures::ScriptedModel;

constexpr double frameSeconds = fixtures::scriptedFrameMs / 1000.0;

/// A word as it is said, with the space before it, and the marks that are written after it.
struct Said {
    std::string spoken, marks;
};
struct Sentence {
    const char* locale;
    std::vector<Said> said;
    const char* words;  ///< as in the word table
};

const std::vector<Sentence>& sentences() {
    static const std::vector<Sentence> all{
        {"ru-RU", {{" Привет", ","}, {" щенок", " —"}, {" ёжик", "!"}}, "Привет,|щенок~—|ёжик!"},
        {"en-US", {{" Don't", ","}, {" well-known", ""}, {" naïve", "..."}}, "Don't,|well-known|naïve..."},
        {"uk-UA", {{" М'яч", ","}, {" п’ять", ""}, {" їжаків", "."}}, "М'яч,|п’ять|їжаків."},
        {"fr-FR", {{" L'été", ""}, {" où", " ?"}, {" garçon", " !"}}, "L'été|où~?|garçon~!"},
        {"de-DE", {{" Größe", ","}, {" Äpfel", ""}, {" süß", "."}}, "Größe,|Äpfel|süß."},
        {"es-ES", {{" ¿Qué", ""}, {" niño", "?"}, {" ¡Adiós", "!"}}, "¿Qué|niño?|¡Adiós!"},
        {"it-IT", {{" Perché", "?"}, {" L'età", ""}, {" è", "."}}, "Perché?|L'età|è."},
        {"zh-CN", {{"今天", ""}, {"天气", ""}, {"很好", "。"}}, "今天|天气|很好。"},
        {"ja-JP", {{"私", ""}, {"は", ""}, {"学生", "、"}, {"です", "。"}}, "私|は|学生、|です。"},
    };
    return all;
}

/// Bytes in at most three pieces, cut wherever that falls, and mostly inside a character; each holds
/// something that is spoken.
std::vector<std::string> pieces(const std::string& bytes) {
    const auto length = std::max<std::size_t>(4, (bytes.size() + 2) / 3);
    std::vector<std::string> cut;
    for (std::size_t at = 0; at < bytes.size(); at += length)
        cut.push_back(bytes.substr(at, length));
    return cut;
}

/// A sentence as a script, and when its words begin and end, in frames of the window.
struct Spoken {
    static constexpr double before = 12.5;  // the quiet that a stretch keeps, 0.25 s
    ScriptedModel model;
    std::vector<std::pair<double, double>> frames;

    explicit Spoken(const Sentence& sentence, int framesEach = 8, int framesOfMarks = 5) {
        int frame = 0;
        double begin = before;
        for (const auto& [spoken, marks] : sentence.said) {
            for (const auto& piece : pieces(spoken))
                model.pieces.push_back({piece, frame += framesEach + (frame == 0 ? 12 : 0)});
            frames.emplace_back(begin, frame);
            if (!marks.empty())
                model.pieces.push_back({marks, frame += framesOfMarks});
            begin = frame;
        }
    }

    /// Sound in which the words are spoken where the script says so, the first one at `from` seconds; nobody
    /// speaks where it has only marks.
    std::vector<float> sound(double from) const {
        auto sound = sound::background(secondsOf(frames.size() - 1, from).second + 1.0, -70.0);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const auto [begin, end] = secondsOf(i, from);
            sound::addVoice(sound, begin, end, -20.0);
        }
        return sound;
    }
    std::pair<double, double> secondsOf(std::size_t word, double from) const {
        return {from + (frames[word].first - before) * frameSeconds,
                from + (frames[word].second - before) * frameSeconds};
    }
};

class WhisperLanguages : public testing::Test {
  protected:
    std::filesystem::path recording(const std::vector<float>& sound) const {
        std::vector<std::int16_t> samples;
        for (const float sample : sound)
            samples.push_back(static_cast<std::int16_t>(std::lround(sample * 32767.0F)));
        return writeWav(folder, "voice.wav", samples);
    }
    WhisperSettings settings() const {
        auto made = whisperSettingsHere();
        made.command = whisperCommand(KORVANE_PROGRAMS);
        return made;
    }
    std::filesystem::path modelFile(const ScriptedModel& script) const {
        const auto file = folder.path() / "ggml-scripted.bin";
        script.write(file);
        return file;
    }
    /// \throws what the engine reports.
    std::vector<RecognizedSegment> recognize(const ScriptedModel& script, const char* locale,
                                             const std::filesystem::path& sound) const {
        const InstalledSpeechModel model{"scripted", "Whisper scripted", modelFile(script), 1, 1, 1.0, true};
        WhisperEngine engine([&] { return std::optional(model); }, settings());
        std::promise<std::vector<RecognizedSegment>> arrived;
        const auto task = engine.makeRecognizer(Locale{locale})
                              ->recognitionTask({sound, false}, [&](const auto& result, const auto& error) {
                                  if (error)
                                      arrived.set_exception(error);
                                  else
                                      arrived.set_value(result->segments);
                              });
        return arrived.get_future().get();
    }
    static std::string shown(const std::vector<RecognizedSegment>& segments) {
        std::vector<TimedWord> words;
        for (const auto& segment : segments)
            words.push_back({segment.substring});
        return korvane::shown(words);
    }
    /// Somebody speaks in [from, to).
    static std::vector<float> voice(double seconds, double from, double to) {
        auto sound = sound::background(seconds, -70.0);
        sound::addVoice(sound, from, to, -20.0);
        return sound;
    }

    const TemporaryFolder folder;
};

TEST_F(WhisperLanguages, everyTokenIsTimedToTheFrameHoweverItsBytesAreCut) {
    for (const auto& sentence : sentences()) {
        // All texts of the language. No piece so short that the library might never let a model say it:
        // single brackets, notes.
        std::string text;
        for (const auto& line : wordCases())
            text += line.locale == std::string(sentence.locale) ? line.text : "";
        text.resize(text.size() / 7 * 7);
        ScriptedModel script;
        int frame = 10;
        for (std::size_t at = 0; at < text.size(); at += 7)
            script.pieces.push_back({text.substr(at, 7), frame += 4 + static_cast<int>(at % 5)});
        WhisperWorker worker(settings().command, modelFile(script), 1, {}, {});
        const std::vector<float> sound((static_cast<std::size_t>(frame) + 50) * 320);
        const auto heard = worker.recognize(sound, whisperLanguage(Locale{sentence.locale}), {});
        ASSERT_EQ(heard.size(), 1U) << sentence.locale;
        ASSERT_EQ(heard.front().tokens.size(), script.pieces.size()) << sentence.locale;
        for (std::size_t i = 0; i < script.pieces.size(); ++i) {
            EXPECT_EQ(heard.front().tokens[i].bytes, script.pieces[i].bytes) << sentence.locale;
            EXPECT_EQ(heard.front().tokens[i].aligned, script.pieces[i].endFrame * 2) << sentence.locale;
        }
    }
}

TEST_F(WhisperLanguages, wordsAreThoseOfTheSentenceAtTheirTimes) {
    for (const auto& sentence : sentences()) {
        const Spoken spoken(sentence);
        const auto segments = recognize(spoken.model, sentence.locale, recording(spoken.sound(1.0)));
        ASSERT_EQ(shown(segments), sentence.words);
        for (std::size_t i = 0; i < segments.size(); ++i) {
            const auto [begin, end] = spoken.secondsOf(i, 1.0);
            // Half a step of the loudness that edges at a pause are found by, and the shift of those without.
            EXPECT_NEAR(segments[i].timestamp, begin, 0.012) << segments[i].substring;
            EXPECT_NEAR(segments[i].timestamp + segments[i].duration, end, 0.012) << segments[i].substring;
        }
    }
}

TEST_F(WhisperLanguages, eachWindowOfALongRecordingHasItsOwnTimes) {
    // Ten voices with pauses between them, 48 s: more than one window. Each says the sentence once, at its
    // beginning.
    const Spoken spoken(sentences().front());
    auto sound = sound::background(51.0, -70.0);
    for (int i = 0; i < 10; ++i)
        sound::addVoice(sound, 1.0 + 5.0 * i, 5.0 + 5.0 * i, -20.0);
    const auto segments = recognize(spoken.model, "ru-RU", recording(sound));
    const auto count = spoken.frames.size();
    ASSERT_EQ(segments.size(), 2 * count);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        EXPECT_EQ(segments[i].substring, segments[i % count].substring);
        EXPECT_GT(segments[i].duration, 0.1);
        EXPECT_TRUE(i == 0 || segments[i - 1].timestamp + segments[i - 1].duration <= segments[i].timestamp);
    }
    EXPECT_NEAR(segments.front().timestamp, 1.0, 0.012);
    const double second = segments[count].timestamp;
    EXPECT_GT(second, 20.0);
    EXPECT_NEAR(std::remainder(second - 1.0, 5.0), 0.0, 0.012) << "where one of the voices begins";
}

TEST_F(WhisperLanguages, aModelThatSaysNothingMakesNoWords) {
    EXPECT_EQ(shown(recognize({}, "de-DE", recording(voice(3.0, 1.0, 2.0)))), "");
}

TEST_F(WhisperLanguages, descriptionsOfSoundsMakeNoWords) {
    const auto script = ScriptedModel::saying({" [mu", "sic]", " *app", "lause*", " (la", "ughs)"}, 8);
    EXPECT_EQ(shown(recognize(script, "en-US", recording(voice(3.0, 1.0, 2.0)))), "");
    const auto mixed = ScriptedModel::saying({" Hi", " [la", "ughs]", " you"}, 18);
    EXPECT_EQ(shown(recognize(mixed, "en-US", recording(voice(3.0, 1.0, 2.0)))), "Hi|you");
}

TEST_F(WhisperLanguages, nothingIsInventedWhereNobodySpeaks) {
    const auto script = ScriptedModel::saying({" Thanks", " for", " watching!"});
    EXPECT_EQ(shown(recognize(script, "en-US", recording(sound::background(5.0, -60.0)))), "");
}

TEST_F(WhisperLanguages, whatTheModelItselfTakesForSilenceIsDropped) {
    auto script = ScriptedModel::saying({" Thanks", " for", " watching!"});
    script.noSpeechProbability = 0.95;
    EXPECT_EQ(shown(recognize(script, "en-US", recording(voice(3.0, 1.0, 2.0)))), "");
    script.noSpeechProbability = 0.2;
    EXPECT_EQ(shown(recognize(script, "en-US", recording(voice(3.0, 1.0, 2.0)))), "Thanks|for|watching!");
}

TEST_F(WhisperLanguages, aRestTooShortToAlignEndsNothing) {
    // The library listens on after a pair of time stamps, and would end its process where what is left is
    // shorter than its filter. It counts 0.01 s less than there is: from 0.35 s on a rest is listened to,
    // from 0.16 s on it could be aligned, up to 0.1 s it is nothing; and a time stamp has to lie 0.16 s
    // behind the last.
    struct Rest {
        int hundredths, endFrame;
    };
    for (const auto& [length, end] :
         {Rest{60, 7}, Rest{60, 9}, Rest{200, 60}, Rest{200, 82}, Rest{200, 83}, Rest{200, 91}, Rest{200, 92},
          Rest{200, 94}, Rest{200, 95}, Rest{200, 99}}) {
        const std::vector<float> sound(static_cast<std::size_t>(length) * 160);
        ScriptedModel script{{{" One", end, true}}};
        script.textContext = 32;  // of a model that is denied its time stamp the library tries everything
        WhisperWorker worker(settings().command, modelFile(script), 1, {}, {});
        EXPECT_NO_THROW(worker.recognize(sound, "en", {})) << end;
        EXPECT_TRUE(worker.isUsable()) << end;
    }
}

}  // namespace
}  // namespace korvane
