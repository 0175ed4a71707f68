// The real worker with a model that tells voices from other sounds: a voice is what sounds at 440 Hz.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <future>
#include <mutex>

#include "platform/models/ModelError.h"
#include "platform/models/VoiceModelFile.h"
#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/speech/whisper/WhisperProtocol.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/fixtures/whisper-model/ScriptedVoiceModel.h"
#include "tests/platform/speech/SpokenFixture.h"
#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

using fixtures::ScriptedModel;
using fixtures::ScriptedVoiceModel;

class VoiceModelTest : public testing::Test {
  protected:
    VoiceModelTest() {
        ScriptedVoiceModel().write(voices);
        // Two words where the first voice is, and two where the second one is when nothing lies between.
        ScriptedModel script{{{" one", 62}, {" two", 112}, {" three", 187}, {" four", 237}}, 250};
        script.write(speech);
    }

    /// Somebody speaks from 1 to 3 s and from 10 to 12 s, and music plays from 5 to 8 s.
    static std::vector<float> voiceMusicVoice() {
        auto sound = sound::background(13.0, -70.0);
        sound::addVoice(sound, 1.0, 3.0, -20.0);
        sound::addVoice(sound, 10.0, 12.0, -20.0);
        addMusic(sound, 5.0, 8.0);
        return sound;
    }
    static void addMusic(std::vector<float>& sound, double from, double to) {
        const auto music = sound::tone(to - from, 2000.0, -20.0);
        for (std::size_t i = 0; i < music.size(); ++i)
            sound[static_cast<std::size_t>(from * sound::rateHz) + i] += music[i];
    }

    std::vector<RecognizedSegment> recognize(const std::vector<float>& sound,
                                             const std::optional<std::filesystem::path>& voiceModel) {
        std::vector<std::int16_t> samples;
        for (const float sample : sound)
            samples.push_back(static_cast<std::int16_t>(std::lround(sample * 32767.0F)));
        const auto recording = writeWav(folder, "sound.wav", samples);
        WhisperSettings settings;
        settings.command = whisperCommand(KORVANE_PROGRAMS);
        settings.findVoiceModel = [&] { return voiceModel; };
        settings.log = [&](const std::string& line) { log.push_back(line); };
        const InstalledSpeechModel model{"scripted", "Whisper scripted", speech, 1, 1, 1.0, true};
        WhisperEngine engine([&] { return std::optional(model); }, settings);
        std::promise<std::vector<RecognizedSegment>> arrived;
        const auto task =
            engine.makeRecognizer(Locale{"en-US"})
                ->recognitionTask({recording, false}, [&](const auto& result, const auto& error) {
                    if (error)
                        arrived.set_exception(error);
                    else
                        arrived.set_value(result->segments);
                });
        return arrived.get_future().get();
    }
    /// To the last digit.
    static std::vector<std::string> shown(const std::vector<RecognizedSegment>& segments) {
        std::vector<std::string> all;
        for (const auto& segment : segments)
            all.push_back(segment.substring + " " + std::to_string(segment.timestamp) + " for " +
                          std::to_string(segment.duration));
        return all;
    }
    std::unique_ptr<WhisperWorker> worker() {
        return std::make_unique<WhisperWorker>(whisperCommand(KORVANE_PROGRAMS), speech, 1, WhisperPatience(),
                                               std::stop_token());
    }

    TemporaryFolder folder;
    const std::filesystem::path voices = folder.path() / "ggml-silero-test.bin";
    const std::filesystem::path speech = folder.path() / "ggml-scripted.bin";
    std::vector<std::string> log;
};

TEST_F(VoiceModelTest, theLibraryFindsVoicesWhereTheyAreToTheFrame) {
    const auto whisper = worker();
    whisper->loadVoices(voices, {});
    const auto sound = voiceMusicVoice();
    const auto chances = whisper->findVoices(sound, {});
    ASSERT_EQ(chances.size(), (sound.size() + 511) / 512);
    for (std::size_t i = 0; i < chances.size(); ++i) {
        const double begin = static_cast<double>(i) * 0.032, end = begin + 0.032;
        const auto within = [&](double from, double to) { return begin >= from && end <= to; };
        if (within(0.0, 0.98) || within(3.02, 9.98) || within(12.02, 13.0)) {
            EXPECT_LT(chances[i], 0.1) << begin;
        }
        // Between two syllables is a dip of 40 ms.
        if ((within(1.02, 2.98) && std::fmod(begin - 1.0, 0.2) < 0.12) ||
            (within(10.02, 11.98) && std::fmod(begin - 10.0, 0.2) < 0.12)) {
            EXPECT_GT(chances[i], 0.9) << begin;
        }
    }
    // What one request gives doesn't depend on the one before.
    EXPECT_EQ(whisper->findVoices(sound, {}), chances);
    EXPECT_FALSE(whisper->recognize(std::span(sound).first(48000), "en", {}).empty());
}

TEST_F(VoiceModelTest, nothingIsInventedInMusicAndWordsBeforeAndBehindKeepTheirTimes) {
    const auto heard = recognize(voiceMusicVoice(), voices);
    EXPECT_TRUE(log.empty());
    struct Word {
        const char* text;
        double begin, end;
    };
    // The first of two words ends 1.24 s into its stretch, which begins 0.25 s before the voice.
    const Word right[] = {
        {"one", 1.0, 1.99}, {"two", 1.99, 3.0}, {"three", 10.0, 10.99}, {"four", 10.99, 12.0}};
    ASSERT_EQ(heard.size(), std::size(right));
    for (std::size_t i = 0; i < heard.size(); ++i) {
        EXPECT_EQ(heard[i].substring, right[i].text);
        EXPECT_NEAR(heard[i].timestamp, right[i].begin, 0.012) << right[i].text;
        EXPECT_NEAR(heard[i].timestamp + heard[i].duration, right[i].end, 0.012) << right[i].text;
    }
    // As if no music had been there, to the sample.
    auto voicesOnly = sound::background(13.0, -70.0);
    sound::addVoice(voicesOnly, 1.0, 3.0, -20.0);
    sound::addVoice(voicesOnly, 10.0, 12.0, -20.0);
    EXPECT_EQ(shown(heard), shown(recognize(voicesOnly, std::nullopt)));
    // Without the model the music is as good a place for words as any.
    const auto invented = recognize(voiceMusicVoice(), std::nullopt);
    ASSERT_EQ(invented.size(), 4U);
    EXPECT_GT(invented[2].timestamp, 4.5);
    EXPECT_LT(invented[3].timestamp + invented[3].duration, 8.5);
}

TEST_F(VoiceModelTest, whereOnlyMusicPlaysNothingIsRecognised) {
    auto sound = sound::background(5.0, -70.0);
    addMusic(sound, 1.0, 4.0);
    EXPECT_TRUE(recognize(sound, voices).empty());
    EXPECT_FALSE(recognize(sound, std::nullopt).empty());
}

TEST_F(VoiceModelTest, aVoiceThatFollowsMusicWithoutAPauseBeginsWhereItIsHeard) {
    ScriptedModel{{{" one", 62}, {" two", 112}}, 120}.write(speech);
    auto sound = sound::background(10.0, -70.0);
    addMusic(sound, 1.0, 5.0);
    sound::addVoice(sound, 5.0, 7.0, -20.0);
    const auto heard = recognize(sound, voices);
    ASSERT_EQ(heard.size(), 2U);
    // By the model's frames and one more: the loudness tells nothing here.
    EXPECT_NEAR(heard.front().timestamp, 5.0, 0.064);
    EXPECT_NEAR(heard[1].timestamp + heard[1].duration, 7.0, 0.012);
}

TEST_F(VoiceModelTest, aModelThatCannotBeUsedIsOneLineAndTheLoudnessAloneGoesOn) {
    auto spoiled = ScriptedVoiceModel();
    spoiled.isSpoiled = true;
    spoiled.write(folder.path() / "spoiled.bin");
    const auto whole = contentOf(voices);
    for (const auto& file : {folder.path() / "spoiled.bin", folder.file("cut.bin", whole.substr(0, 100000)),
                             folder.path() / "missing.bin", folder.file("other.bin", "something else")}) {
        log.clear();
        EXPECT_EQ(shown(recognize(voiceMusicVoice(), file)),
                  shown(recognize(voiceMusicVoice(), std::nullopt)));
        ASSERT_EQ(log.size(), 1U) << file;
        EXPECT_NE(log[0].find(file.filename().string()), std::string::npos) << log[0];
    }
}

TEST_F(VoiceModelTest, aDamagedFileIsRefusedBeforeTheLibrarySeesIt) {
    const auto whole = contentOf(voices);
    EXPECT_EQ(readVoiceModel(voices), whole.size());
    EXPECT_TRUE(looksLikeVoiceModel(voices));
    EXPECT_FALSE(looksLikeVoiceModel(speech));
    EXPECT_FALSE(looksLikeVoiceModel(folder.path() / "missing.bin"));
    EXPECT_FALSE(looksLikeVoiceModel(folder.path()));
    std::vector<std::string> files;
    for (const std::size_t length : {std::size_t{0}, std::size_t{7}, std::size_t{18}, std::size_t{40},
                                     std::size_t{106}, std::size_t{120}, whole.size() / 2, whole.size() - 1})
        files.push_back(whole.substr(0, length));
    files.push_back(whole + "x");
    // Each number of the head but the version, and those of the first tensor.
    for (std::size_t at = 30; at < 130; at += 4) {
        for (const std::int32_t value : {-1, 0, 1, 0x7fffffff}) {
            auto wrong = whole;
            std::memcpy(wrong.data() + at, &value, sizeof value);
            if (wrong != whole)
                files.push_back(std::move(wrong));
        }
    }
    const auto whisper = worker();
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto file = folder.file("ggml-damaged.bin", files[i]);
        EXPECT_THROW(readVoiceModel(file), ModelError) << i;
        EXPECT_THROW(whisper->loadVoices(file, {}), VoiceModelError) << i;
        ASSERT_TRUE(whisper->isUsable()) << i;
    }
    ScriptedVoiceModel other;
    other.kind = "silero-08k";
    other.write(folder.path() / "other.bin");
    EXPECT_THROW(readVoiceModel(folder.path() / "other.bin"), ModelError);
}

}  // namespace
}  // namespace korvane
