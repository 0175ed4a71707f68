// What the tests of the store of models share: folders of their own, a list that knows one small model.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "SmallWhisperModel.h"
#include "platform/models/Digest.h"
#include "platform/models/ModelError.h"
#include "platform/models/SpeechModelStore.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::test {

class StoreFixture : public testing::Test {
  protected:
    StoreFixture() {
        folders.configHome = folder.path() / "config";
        folders.dataHome = folder.path() / "data";
        folders.dataDirs = {folder.path() / "local", folder.path() / "usr"};
        folders.configDirs = {folder.path() / "etc/xdg"};
    }

    /// A list that knows `content` as "known" under the name "ggml-known.bin".
    SpeechModelCatalogue knowing(const std::string& content) const {
        Sha256 digest;
        digest.add(std::as_bytes(std::span(content)));
        return SpeechModelCatalogue::parse(
            "it",
            R"({"mirror": "https://x/", "models": [{"id": "known", "name": "Known", "file": "ggml-known.bin",
                "memory": 1000, "operations": 77e12, "bytes": )" +
                std::to_string(content.size()) + R"(, "sha256": ")" + digest.finish() + "\"}]}");
    }
    SpeechModelStore store() const { return {folders, knowing(small)}; }
    std::vector<std::string> ids() const {
        std::vector<std::string> ids;
        for (const auto& model : store().installed())
            ids.push_back(model.id);
        return ids;
    }
    template <class Action>
    static std::string refusal(const Action& action) {
        try {
            action();
        } catch (const ModelError& error) {
            const std::string sentence = error.what();
            EXPECT_TRUE(sentence.ends_with('.')) << sentence;
            return sentence;
        }
        return "nothing was refused";
    }
    std::string refusedFile(const std::filesystem::path& file) {
        return refusal([&] { store().add(file); });
    }

    TemporaryFolder folder;
    StandardFolders folders;
    std::string small = smallWhisperModel();
    std::string larger = smallWhisperModel({.audioLayers = 9});
    std::string own = "data/korvane/models/whisper/";
    std::string systems = "usr/korvane/models/whisper/";
};

}  // namespace korvane::test
