// The engine as a whole, over spoken recordings with known text.
#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <future>
#include <iterator>
#include <sstream>

#include "platform/ffmpeg/MediaError.h"
#include "platform/speech/pocketsphinx/PocketSphinxDecoder.h"
#include "platform/tasks/Cancellation.h"
#include "tests/platform/speech/SpokenFixture.h"
#include "tests/platform/speech/SyntheticSound.h"

#ifdef __SANITIZE_ADDRESS__
/// What the library had allocated when it gave up on a model is lost for good.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libpocketsphinx\nleak:libsphinxbase\n";
}
#endif

namespace korvane {
namespace {

const char* const spokenText =
    "When I was young we lived in a small house near the river. Every morning my father walked to the "
    "station "
    "and took the train to the city. My mother worked at the school, and she often came home with stories "
    "about "
    "the children in her class. We had a garden with apple trees, and in the summer we would sit outside "
    "until "
    "it was dark. One day a man came to the door and asked if we wanted to sell the house.";

StandardFolders standardFolders() {
    return StandardFolders::of(processEnvironment());
}

/// Blocks until the engine has answered. \throws what it answered with.
std::vector<RecognizedSegment> recognize(PocketSphinxEngine& engine, const std::filesystem::path& file) {
    std::promise<std::vector<RecognizedSegment>> answer;
    const auto recognizer = engine.makeRecognizer(Locale{"en-US"});
    const auto task =
        recognizer->recognitionTask({file, false}, [&](const auto& result, const std::exception_ptr& error) {
            if (error)
                answer.set_exception(error);
            else
                answer.set_value(result->segments);
        });
    return answer.get_future().get();
}

std::vector<RecognizedSegment> recognize(const std::filesystem::path& file) {
    PocketSphinxEngine engine(PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS));
    return recognize(engine, file);
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::string letters;
    for (const char c : text)
        letters += std::isalpha(static_cast<unsigned char>(c)) || c == '\''
                       ? static_cast<char>(std::tolower(c))
                       : ' ';
    std::istringstream words(letters);
    return {std::istream_iterator<std::string>(words), {}};
}

/// Substituted, missing and invented words for each word that was said.
double wordErrorRate(const std::vector<std::string>& said, const std::vector<RecognizedSegment>& heard) {
    std::vector<std::size_t> row(heard.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < said.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < heard.size(); ++j) {
            const auto substituted = diagonal + (said[i] == heard[j].substring ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({substituted, row[j + 1] + 1, row[j] + 1});
        }
    }
    return static_cast<double>(row.back()) / static_cast<double>(said.size());
}

TEST(PocketSphinxEngine, spokenTextComesOutWithFewErrorsAndNoMarks) {
    const TemporaryFolder folder;
    const auto speech = speak(folder, spokenText);
    const auto heard = recognize(writeWav(folder, "speech.wav", speech));
    EXPECT_LE(wordErrorRate(wordsOf(spokenText), heard), 0.05);
    double end = 0.0;
    for (const auto& segment : heard) {
        EXPECT_EQ(segment.substring.find_first_of("<>[]()+"), std::string::npos) << segment.substring;
        EXPECT_GE(segment.timestamp, end);
        EXPECT_GT(segment.duration, 0.0);
        end = segment.timestamp + segment.duration;
    }
    EXPECT_LE(end, static_cast<double>(speech.size()) / spokenRateHz);
}

TEST(PocketSphinxEngine, phrasesAreFoundWhereTheyWerePut) {
    const TemporaryFolder folder;
    auto phrase = speak(folder, "my father walked to the station");
    const auto isLoud = [](std::int16_t sample) { return std::abs(sample) > 300; };
    phrase.erase(phrase.begin(), std::find_if(phrase.begin(), phrase.end(), isLoud));
    phrase.erase(std::find_if(phrase.rbegin(), phrase.rend(), isLoud).base(), phrase.end());
    const double length = static_cast<double>(phrase.size()) / spokenRateHz;
    // Odd numbers, so that no frame of 10 ms begins with the phrase.
    const double starts[] = {1.0037, 5.4161, 9.8293, 61.2717};
    std::vector<std::int16_t> recording(65 * spokenRateHz);
    for (const double start : starts)
        std::copy(phrase.begin(), phrase.end(), recording.begin() + std::lround(start * spokenRateHz));
    const auto heard = recognize(writeWav(folder, "phrases.wav", recording));
    for (const double start : starts) {
        const auto inside = [&](const RecognizedSegment& s) {
            return s.timestamp > start - 0.5 && s.timestamp < start + length + 0.5;
        };
        const auto first = std::find_if(heard.begin(), heard.end(), inside);
        const auto last = std::find_if(heard.rbegin(), heard.rend(), inside);
        ASSERT_NE(first, heard.end());
        EXPECT_NEAR(first->timestamp, start, 0.035);
        EXPECT_NEAR(last->timestamp + last->duration, start + length, 0.035);
    }
}

TEST(PocketSphinxDecoder, whoeverWasCancelledBeforeItsTurnLoadsNothing) {
    const auto model =
        PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS).find(Locale{"en-US"}).value();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(PocketSphinxDecoder::load(model, stop.get_token()), CancellationError);
}

TEST(PocketSphinxDecoder, aPauseKeepsItsLengthAndEachUtteranceCountsItsOwnFrames) {
    const TemporaryFolder folder;
    const auto phrase = speak(folder, "my father walked to the station");
    auto utterance = phrase;
    utterance.resize(phrase.size() + 4 * spokenRateHz);
    utterance.insert(utterance.end(), phrase.begin(), phrase.end());
    const auto decoder = PocketSphinxDecoder::load(
        PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS).find(Locale{"en-US"}).value(), {});
    for (int round = 0; round < 2; ++round) {
        std::vector<int> starts;
        for (const auto& heard : decoder->recognize(utterance, {})) {
            if (heard.entry.starts_with("station"))
                starts.push_back(heard.firstFrame);
        }
        ASSERT_EQ(starts.size(), 2U);
        const auto apart = static_cast<double>(phrase.size()) / spokenRateHz + 4.0;
        EXPECT_NEAR((starts[1] - starts[0]) / 100.0, apart, 0.1);
        EXPECT_LT(starts[0] / 100.0, static_cast<double>(phrase.size()) / spokenRateHz);
    }
}

TEST(PocketSphinxEngine, noiseAndHumAreNoWords) {
    const TemporaryFolder folder;
    for (const double db : {-50.0, -20.0}) {
        std::vector<std::int16_t> samples;
        for (const float sample : sound::background(8.0, db))
            samples.push_back(static_cast<std::int16_t>(sample * 20000.0F));
        EXPECT_TRUE(recognize(writeWav(folder, "noise.wav", samples)).empty()) << db;
    }
}

TEST(PocketSphinxEngine, speechIsStillUnderstoodOverNoise) {
    const TemporaryFolder folder;
    const std::string sentence =
        "every morning my father walked to the station and took the train to the city";
    auto speech = speak(folder, sentence);
    sound::Noise noise(-48.0);
    for (auto& sample : speech)
        sample = static_cast<std::int16_t>(sample + noise.next() * 32768.0F);
    const auto heard = recognize(writeWav(folder, "noisy.wav", speech));
    EXPECT_LE(wordErrorRate(wordsOf(sentence), heard), 0.35);
}

TEST(PocketSphinxEngine, aLoudNoiseIsTakenOutBeforeWordsAreHeard) {
    const TemporaryFolder folder;
    auto speech = speak(folder, spokenText);
    sound::Noise noise(-37.0);
    for (auto& sample : speech)
        sample = static_cast<std::int16_t>(std::clamp(sample + noise.next() * 32768.0F, -32768.0F, 32767.0F));
    const auto heard = recognize(writeWav(folder, "noisy.wav", speech));
    // With the noise in it, four words of five come out wrong; without, every second one.
    EXPECT_LE(wordErrorRate(wordsOf(spokenText), heard), 0.65);
}

/// A recording that breaks off while it is read.
class BreakingRecording final : public AudioDecoder {
  public:
    AudioFormat format() const override { return {sound::rateHz, 1}; }
    std::int64_t read(std::int64_t position, std::span<float> out) override {
        if (position > 10 * sound::rateHz)
            throw MediaError("The recording can't be read any more.");
        return std::ssize(out);
    }
};

TEST(PocketSphinxEngine, aRecordingThatBreaksOffIsAnError) {
    PocketSphinxEngine engine(
        PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS),
        [](const auto&, int, const auto&) { return std::make_unique<BreakingRecording>(); });
    EXPECT_THROW(recognize(engine, "any"), MediaError);
}

/// A model that points at the installed one, except for a file that is spoiled.
class SpoiledModel {
  public:
    SpoiledModel() {
        const auto whole =
            PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS).find(Locale{"en-US"}).value();
        folder_ = root.path() / "korvane" / "models" / "pocketsphinx" / "en-US";
        std::filesystem::create_directories(folder_ / "en-us");
        for (const auto& entry : std::filesystem::directory_iterator(whole.acousticModel))
            std::filesystem::create_symlink(entry.path(), folder_ / "en-us" / entry.path().filename());
        std::filesystem::create_symlink(whole.languageModel, folder_ / "en-us.lm.bin");
        std::filesystem::create_symlink(whole.dictionary, folder_ / "en-us.dict");
    }
    void spoil(const std::string& file, const std::string& bytes) {
        std::filesystem::remove(folder_ / file);
        root.file(std::filesystem::relative(folder_ / file, root.path()), bytes);
    }
    /// The file's first bytes only.
    void cutOff(const std::string& file, std::size_t length) {
        std::ifstream whole(folder_ / file, std::ios::binary);
        std::string bytes(length, '\0');
        whole.read(bytes.data(), static_cast<std::streamsize>(length));
        spoil(file, bytes);
    }
    std::unique_ptr<PocketSphinxEngine> engine() const {
        StandardFolders folders;
        folders.dataHome = root.path();
        return std::make_unique<PocketSphinxEngine>(PocketSphinxModels(folders, {}));
    }

  private:
    TemporaryFolder root;
    std::filesystem::path folder_;
};

void expectOneSentenceAboutTheModel(const SpoiledModel& model, const std::string& what) {
    const TemporaryFolder folder;
    const auto silence = writeWav(folder, "silence.wav", std::vector<std::int16_t>(spokenRateHz));
    const auto engine = model.engine();
    try {
        recognize(*engine, silence);
        FAIL() << what << " was accepted";
    } catch (const RecognitionError& error) {
        const std::string sentence = error.what();
        EXPECT_NE(sentence.find("en-US"), std::string::npos) << sentence;
        EXPECT_EQ(sentence.find('\n'), std::string::npos) << sentence;
        EXPECT_EQ(sentence.back(), '.') << sentence;
    }
}

TEST(PocketSphinxEngine, aModelThatIsNotWhatItClaimsIsAnErrorAndNeverTheEndOfTheProcess) {
    const std::string nonsense(5000, 'x');
    for (const char* file : {"en-us/mdef", "en-us/means", "en-us/variances", "en-us/sendump",
                             "en-us/transition_matrices", "en-us/feat.params", "en-us.lm.bin"}) {
        SpoiledModel model;
        model.spoil(file, nonsense);
        expectOneSentenceAboutTheModel(model, file);
    }
}

TEST(PocketSphinxEngine, aModelThatWasCutOffWhileCopyingIsAnError) {
    for (const char* file : {"en-us/mdef", "en-us/sendump", "en-us/means", "en-us/transition_matrices"}) {
        for (const std::size_t length : {0U, 1U, 700U, 2000U}) {
            SpoiledModel model;
            model.cutOff(file, length);
            expectOneSentenceAboutTheModel(model, file + std::string(" of ") + std::to_string(length));
        }
    }
}

TEST(PocketSphinxEngine, aModelOfThePersonsOwnServesItsLocale) {
    const SpoiledModel whole;
    const auto engine = whole.engine();
    EXPECT_TRUE(engine->support(Locale{"en-US"}).installed);
    EXPECT_NE(engine->support(Locale{"en-US"}).description.find("model in "), std::string::npos);
    const TemporaryFolder folder;
    EXPECT_FALSE(recognize(*engine, writeWav(folder, "hello.wav", speak(folder, "good morning"))).empty());
}

TEST(PocketSphinxEngine, aModelThatGoesAwayMakesItsRecogniserUnavailable) {
    auto model = std::make_unique<SpoiledModel>();
    const auto engine = model->engine();
    const auto recognizer = engine->makeRecognizer(Locale{"en-US"});
    EXPECT_TRUE(recognizer->isAvailable());
    model.reset();
    EXPECT_FALSE(recognizer->isAvailable());
}

TEST(PocketSphinxEngine, supportNamesThePackageOrTheFolder) {
    const PocketSphinxEngine installed(PocketSphinxModels(standardFolders(), KORVANE_POCKETSPHINX_MODELS));
    EXPECT_EQ(installed.support(Locale{"en-US"}).description,
              "PocketSphinx, US English (pocketsphinx-en-us)");
    StandardFolders nowhere;
    nowhere.dataHome = "/nowhere";
    const PocketSphinxEngine bare(PocketSphinxModels(nowhere, {}));
    EXPECT_EQ(bare.support(Locale{"en-US"}).description,
              "Install the package pocketsphinx-en-us, or put a PocketSphinx model into "
              "/nowhere/korvane/models/pocketsphinx/en-US.");
    EXPECT_EQ(bare.support(Locale{"fr-FR"}).description,
              "Put a PocketSphinx model (acoustic model, .lm.bin, .dict) into "
              "/nowhere/korvane/models/pocketsphinx/fr-FR.");
}

}  // namespace
}  // namespace korvane
