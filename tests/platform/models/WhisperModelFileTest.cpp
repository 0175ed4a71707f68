#include "platform/models/WhisperModelFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "SmallWhisperModel.h"
#include "platform/models/ModelError.h"
#include "platform/models/SpeechModelCatalogue.h"
#include "tests/support/TemporaryFolder.h"

using namespace korvane;
using namespace korvane::test;
using testing::HasSubstr;

namespace {

class WhisperModelFile : public testing::Test {
  protected:
    std::string refusal(const std::string& content) {
        try {
            readWhisperModel(folder.file("m.bin", content));
        } catch (const ModelError& error) {
            return error.what();
        }
        return {};
    }
    TemporaryFolder folder;
};

TEST_F(WhisperModelFile, aWholeModelTellsItsShape) {
    const auto content = smallWhisperModel();
    const auto shape = readWhisperModel(folder.file("m.bin", content));
    EXPECT_EQ(shape.vocabulary, 51865);
    EXPECT_EQ(shape.audioContext, 1500);
    EXPECT_EQ(shape.audioState, 8);
    EXPECT_EQ(shape.textLayers, 1);
    EXPECT_EQ(shape.mels, 80);
    EXPECT_EQ(shape.fileBytes, content.size());
    EXPECT_TRUE(shape.multilingual());
}

TEST_F(WhisperModelFile, quantisedWeightsAndMoreLayersAreWhole) {
    EXPECT_EQ(refusal(smallWhisperModel({.state = 32, .audioLayers = 3, .textLayers = 2, .weightType = 8})),
              "");
}

TEST_F(WhisperModelFile, oneForEnglishOnlyIsToldApart) {
    EXPECT_FALSE(
        readWhisperModel(folder.file("m.bin", smallWhisperModel({.vocabulary = 51864}))).multilingual());
}

TEST_F(WhisperModelFile, aFileCutOffAnywhereIsNoticed) {
    const auto content = smallWhisperModel();
    for (const std::size_t length :
         {std::size_t{4}, std::size_t{30}, std::size_t{48}, std::size_t{5000}, std::size_t{80000},
          std::size_t{300000}, content.size() / 2, content.size() - 500, content.size() - 1})
        EXPECT_THAT(refusal(content.substr(0, length)), HasSubstr("cut off")) << length;
}

TEST_F(WhisperModelFile, bytesBehindTheEndAreDamage) {
    EXPECT_THAT(refusal(smallWhisperModel() + "x"), HasSubstr("damaged"));
}

TEST_F(WhisperModelFile, otherFilesAreNoModels) {
    for (const std::string& content :
         {std::string(), std::string("x"), std::string(100000, '\0'), std::string("GGUF\3\0\0\0", 8),
          std::string("lmggnonsense") + std::string(100, 'x')})
        EXPECT_THAT(refusal(content), HasSubstr("\"m.bin\" is not a Whisper model")) << content.substr(0, 12);
}

TEST_F(WhisperModelFile, damageInsideIsNoticed) {
    const auto content = smallWhisperModel();
    EXPECT_NE(refusal(smallWhisperModel({.fftBins = 200})), "");
    auto vocabulary = content;
    vocabulary[48 + 8 + 80 * 201 * 4] = '\xff';
    vocabulary[48 + 8 + 80 * 201 * 4 + 3] = '\x7f';
    EXPECT_NE(refusal(vocabulary), "");
    EXPECT_THAT(refusal(smallWhisperModel({.weightType = 99})), HasSubstr("of a kind"));
}

TEST_F(WhisperModelFile, whatIsNoFileIsSaid) {
    EXPECT_THROW(readWhisperModel(folder.path() / "none.bin"), ModelError);
    EXPECT_THROW(readWhisperModel(folder.path()), ModelError);
    const auto pipe = folder.path() / "pipe.bin";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THROW(readWhisperModel(pipe), ModelError) << "it must not wait for somebody to write";
}

TEST_F(WhisperModelFile, needsWhatTheListSays) {
    // The shapes as they were published.
    const std::map<std::string, WhisperModelShape> shapes{
        {"tiny-q8_0", {51865, 1500, 384, 4, 448, 384, 4, 80, 43537433}},
        {"base-q8_0", {51865, 1500, 512, 6, 448, 512, 6, 80, 81768585}},
        {"small-q8_0", {51865, 1500, 768, 12, 448, 768, 12, 80, 264464607}},
        {"large-v3-turbo-q5_0", {51866, 1500, 1280, 32, 448, 1280, 4, 128, 574041195}},
    };
    const auto catalogue = SpeechModelCatalogue::builtIn();
    for (const auto& model : catalogue.offered()) {
        const auto& shape = shapes.at(model.id);
        EXPECT_EQ(shape.fileBytes, model.bytes);
        EXPECT_NEAR(static_cast<double>(shape.memoryBytes()) / static_cast<double>(model.memoryBytes), 1,
                    0.05);
        EXPECT_NEAR(shape.operationsPerSecond() / model.operationsPerSecond, 1, 0.05);
    }
}

}  // namespace
