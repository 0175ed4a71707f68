#include "app/StoredSpeechModels.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/models/ModelError.h"
#include "tests/fixtures/whisper-model/ScriptedVoiceModel.h"
#include "tests/platform/models/SmallWhisperModel.h"
#include "tests/platform/models/TestServer.h"
#include "tests/support/TemporaryFolder.h"

using namespace korvane;
using namespace korvane::test;

namespace {

class StoredSpeechModelsTest : public testing::Test {
  protected:
    StoredSpeechModelsTest() {
        folders.configHome = folder.path() / "config";
        folders.dataHome = folder.path() / "data";
        folders.configDirs = {folder.path() / "etc/xdg"};
    }
    void list(std::size_t bytes, const std::string& mirror = "https://x/") {
        folder.file("config/korvane/speech-models.json",
                    R"({"mirror": ")" + mirror +
                        R"(", "models": [{"id": "one", "name": "One", "file": "ggml-one.bin",
                "memory": 1000, "operations": 1e9, "sha256": ")" +
                        std::string(64, 'a') + R"(", "bytes": )" + std::to_string(bytes) + "}]}");
    }
    SpeechModelOffer found(const std::string& id) {
        const auto models = StoredSpeechModels(folders).find().models;
        const auto model = std::ranges::find(models, id, &SpeechModelOffer::id);
        return model == models.end() ? SpeechModelOffer() : *model;
    }

    TemporaryFolder folder;
    StandardFolders folders;
    std::string content = smallWhisperModel();
};

TEST_F(StoredSpeechModelsTest, aDownloadedModelCanBeHadAgain) {
    list(content.size());
    folder.file("data/korvane/models/whisper/ggml-one.bin", content);
    EXPECT_TRUE(found("one").isInstalled);
    EXPECT_TRUE(found("one").isListed);
}

TEST_F(StoredSpeechModelsTest, anotherFileOfItsNameIsNotSaidToBeThereForTheAsking) {
    list(content.size() + 1);
    folder.file("data/korvane/models/whisper/ggml-one.bin", content);
    EXPECT_TRUE(found("one").isInstalled);
    EXPECT_FALSE(found("one").isListed);
}

TEST_F(StoredSpeechModelsTest, aFileOfThePersonsOwnStandsBesideTheListedOnes) {
    list(content.size() + 1);
    folder.file("data/korvane/models/whisper/one.bin", content);
    EXPECT_FALSE(found("one").isInstalled);
    EXPECT_TRUE(found("one.bin").isInstalled);
    EXPECT_FALSE(found("one.bin").isListed);
}

TEST_F(StoredSpeechModelsTest, aDamagedFileStandsInThePlaceOfItsModelWithAReason) {
    list(content.size());
    folder.file("data/korvane/models/whisper/ggml-one.bin", content.substr(0, 1000));
    folder.file("data/korvane/models/whisper/ggml-mine.bin", "no model");
    const auto all = StoredSpeechModels(folders).find();
    ASSERT_EQ(all.models.size(), 2U);
    EXPECT_EQ(all.notice, "");
    const auto one = found("one");
    EXPECT_EQ(one.fault, "\"ggml-one.bin\" is cut off: it isn't all of a model.");
    EXPECT_EQ(one.name, "One");
    EXPECT_FALSE(one.isInstalled);
    EXPECT_TRUE(one.isListed);
    EXPECT_TRUE(one.isOwn);
    EXPECT_TRUE(one.isRecommended);
    EXPECT_FALSE(found("mine").isListed);
    EXPECT_EQ(found("mine").name, "ggml-mine.bin");
    StoredSpeechModels(folders).remove("one");
    EXPECT_EQ(found("one").fault, "");
}

TEST_F(StoredSpeechModelsTest, aModelThatFindsVoicesIsAddedShownAndRemovedButRecognisesNothing) {
    list(content.size());
    const auto file = folder.file("ggml-silero-v5.bin", "");
    fixtures::ScriptedVoiceModel().write(file);
    StoredSpeechModels models(folders);
    models.add(file, {}, {});
    ASSERT_EQ(models.find().models.size(), 2U);
    const auto voices = found("silero-v5");
    EXPECT_EQ(voices.name, "Voice model silero-v5");
    EXPECT_EQ(voices.bytes, std::filesystem::file_size(file));
    EXPECT_TRUE(voices.findsVoices);
    EXPECT_TRUE(voices.isOwn);
    EXPECT_FALSE(voices.isInstalled);
    EXPECT_FALSE(voices.isListed);
    EXPECT_FALSE(voices.isRecommended);
    EXPECT_EQ(models.find().inUse, "");
    models.remove("silero-v5");
    EXPECT_EQ(models.find().models.size(), 1U);
}

TEST_F(StoredSpeechModelsTest, aDownloadGoesThroughTheProxyOfTheDesktop) {
    list(content.size(), "http://models.example/");
    TestServer proxy([this](const Received& request, Peer& peer) { serveFile(request, peer, content); });
    std::string asked;
    StoredSpeechModels models(folders, [&](const std::string& address, const std::stop_token&) {
        asked = address;
        return "http://127.0.0.1:" + std::to_string(proxy.port());
    });
    // What comes isn't what the list promises.
    EXPECT_THROW(models.download("one", {}, {}), ModelError);
    EXPECT_EQ(asked, "http://models.example/ggml-one.bin");
    ASSERT_EQ(proxy.requests(), 1);
    EXPECT_EQ(proxy.received().front().target, "http://models.example/ggml-one.bin");
}

}  // namespace
