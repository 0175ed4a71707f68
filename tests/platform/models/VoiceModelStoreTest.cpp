// Models that tell voices from other sounds lie among the others, and are none of them.
#include "StoreFixture.h"
#include "tests/fixtures/whisper-model/ScriptedVoiceModel.h"

using namespace korvane;
using namespace korvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

namespace {

class VoiceModels : public StoreFixture {
  protected:
    /// A whole one.
    fs::path voices(const std::string& path) const {
        const auto file = folder.file(path, "");
        fixtures::ScriptedVoiceModel().write(file);
        return file;
    }
    std::vector<std::string> voiceIds() const {
        std::vector<std::string> ids;
        for (const auto& model : store().voiceModels())
            ids.push_back(model.id);
        return ids;
    }
};

TEST_F(VoiceModels, areFoundByWhatTheyAreAndThePersonsOwnFirst) {
    voices(systems + "ggml-silero-a.bin");
    voices(own + "ggml-silero-b.bin");
    voices(own + "mine.bin");
    EXPECT_THAT(voiceIds(), ElementsAre("silero-b", "mine", "silero-a"));
    EXPECT_TRUE(store().voiceModels().front().own);
    EXPECT_FALSE(store().voiceModels().back().own);
    EXPECT_EQ(store().voiceModels().front().bytes, fs::file_size(store().voiceModels().front().file));
}

TEST_F(VoiceModels, areNoSpeechModelsAndNotUnusable) {
    voices(own + "ggml-silero.bin");
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_THAT(store().unusable(), IsEmpty());
    EXPECT_FALSE(store().inUse());
    EXPECT_FALSE(store().find("silero"));
    folder.file(own + "ggml-known.bin", small);
    EXPECT_THAT(ids(), ElementsAre("known"));
    EXPECT_EQ(store().inUse()->id, "known");
}

TEST_F(VoiceModels, cannotBeChosenToRecognise) {
    const auto file = voices(own + "ggml-silero.bin");
    EXPECT_THAT(refusal([&] { store().use("silero"); }), HasSubstr("recognises no words"));
    EXPECT_THAT(refusal([&] { store().resolve("silero"); }), HasSubstr("recognises no words"));
    EXPECT_THAT(refusal([&] { store().resolve(file.string()); }), HasSubstr("recognises no words"));
}

TEST_F(VoiceModels, areAddedUnderTheirNamesAndRemoved) {
    const auto added = store().add(voices("download/ggml-silero-v5.bin"));
    EXPECT_EQ(added.file, store().folder() / "ggml-silero-v5.bin");
    EXPECT_EQ(added.name, "Voice model silero-v5");
    EXPECT_THAT(voiceIds(), ElementsAre("silero-v5"));
    store().remove("silero-v5");
    EXPECT_THAT(voiceIds(), IsEmpty());
    EXPECT_FALSE(fs::exists(added.file));
    voices(systems + "ggml-silero-v5.bin");
    EXPECT_THAT(refusal([&] { store().remove("silero-v5"); }), HasSubstr("only an administrator"));
}

TEST_F(VoiceModels, thePersonsOwnHidesTheSystemsOfItsNameAndAWholeOneADamagedOne) {
    const auto mine = voices(own + "ggml-silero.bin");
    voices(systems + "ggml-silero.bin");
    ASSERT_THAT(voiceIds(), ElementsAre("silero"));
    EXPECT_TRUE(store().voiceModels().front().own);
    fs::resize_file(mine, fs::file_size(mine) / 2);
    ASSERT_THAT(voiceIds(), ElementsAre("silero"));
    EXPECT_FALSE(store().voiceModels().front().own);
    EXPECT_THAT(store().unusable(), IsEmpty()) << "nobody misses it";
}

TEST_F(VoiceModels, whatTheyHideIsNoSpeechModelEither) {
    voices(own + "ggml-known.bin");
    folder.file(systems + "ggml-known.bin", small);
    EXPECT_THAT(voiceIds(), ElementsAre("known"));
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(VoiceModels, aDamagedOneIsNamedWithItsReason) {
    const auto file = voices(own + "ggml-silero.bin");
    fs::resize_file(file, fs::file_size(file) / 2);
    EXPECT_THAT(voiceIds(), IsEmpty());
    ASSERT_EQ(store().unusable().size(), 1U);
    EXPECT_EQ(store().unusable().front().reason, "\"ggml-silero.bin\" is cut off: it isn't all of a model.");
    EXPECT_THAT(refusedFile(file), HasSubstr("cut off"));
}

}  // namespace
