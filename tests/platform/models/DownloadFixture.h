// What the tests of the downloader share: folders of their own, a model that a server has, no proxies.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "SmallWhisperModel.h"
#include "TestServer.h"
#include "platform/models/Digest.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::test {

/// Sets variables of the environment for its lifetime.
class Variables {
  public:
    void set(const std::string& name, const std::string& value) {
        keep(name);
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    void unset(const std::string& name) {
        keep(name);
        ::unsetenv(name.c_str());
    }
    ~Variables() {
        for (const auto& [name, value] : before_) {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
    }

  private:
    void keep(const std::string& name) {
        const char* value = std::getenv(name.c_str());
        before_.try_emplace(name, value ? std::optional<std::string>(value) : std::nullopt);
    }
    std::map<std::string, std::optional<std::string>> before_;
};

class DownloadFixture : public testing::Test {
  protected:
    using Clock = std::chrono::steady_clock;

    DownloadFixture() {
        for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                                 "no_proxy", "NO_PROXY", "SSL_CERT_FILE"})
            variables.unset(name);
    }

    static StandardFolders foldersIn(const std::filesystem::path& root) {
        StandardFolders folders;
        folders.configHome = root / "config";
        folders.dataHome = root / "data";
        folders.configDirs = {root / "etc/xdg"};
        return folders;
    }

    SpeechModel modelAt(const std::string& address) const {
        Sha256 digest;
        digest.add(std::as_bytes(std::span(content)));
        return {
            "base-q8_0", "Whisper base", "ggml-base-q8_0.bin", address, digest.finish(), content.size(), 1,
            1.0};
    }

    std::filesystem::path download(const SpeechModel& model) {
        return downloadModel(model, store, {}, {}, options);
    }

    /// The one sentence of a download that fails.
    std::string failure(const SpeechModel& model) {
        try {
            download(model);
        } catch (const ModelError& error) {
            const std::string sentence = error.what();
            EXPECT_TRUE(sentence.ends_with('.') || sentence.ends_with('?')) << sentence;
            EXPECT_EQ(sentence.find('\n'), std::string::npos) << sentence;
            EXPECT_FALSE(std::filesystem::exists(whole)) << "it appeared all the same";
            return sentence;
        }
        ADD_FAILURE() << "it was downloaded";
        return {};
    }

    void expectWhole() const {
        EXPECT_EQ(contentOf(whole), content);
        EXPECT_FALSE(std::filesystem::exists(part));
        EXPECT_FALSE(std::filesystem::exists(part.string() + ".json"));
    }

    /// Lets a download run until so much has arrived, then stops it.
    void downloadUntil(const SpeechModel& model, std::uint64_t bytes) {
        std::stop_source stop;
        EXPECT_THROW(downloadModel(
                         model, store, stop.get_token(),
                         [&](const DownloadProgress& progress) {
                             if (progress.receivedBytes >= bytes)
                                 stop.request_stop();
                         },
                         options),
                     CancellationError);
    }

    Variables variables;
    TemporaryFolder folder;
    SpeechModelStore store{foldersIn(folder.path()), SpeechModelCatalogue::builtIn()};
    std::string content = smallWhisperModel();
    std::size_t half = content.size() / 2;
    std::filesystem::path whole = folder.path() / "data/korvane/models/whisper/ggml-base-q8_0.bin";
    std::filesystem::path part = whole.string() + ".part";
    DownloadOptions options = [] {
        DownloadOptions quick;
        quick.firstPause = std::chrono::milliseconds(10);
        quick.fruitlessAttempts = 3;
        quick.fruitlessOnceBegun = 5;
        return quick;
    }();
};

}  // namespace korvane::test
