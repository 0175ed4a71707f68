#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/models/ModelError.h"
#include "platform/models/SpeechModelCatalogue.h"
#include "tests/support/TemporaryFolder.h"

using namespace korvane;
using testing::HasSubstr;

namespace {

constexpr const char* oneModel = R"({"mirror": "https://mirror.example/whisper", "models": [
    {"id": "a", "name": "A", "file": "ggml-a.bin", "bytes": 10, "memory": 20, "operations": 30,
     "sha256": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef"}]})";

/// One model with one field replaced by JSON text, or left out.
std::string modelWith(const std::string& field, const std::string& value) {
    std::string text = R"({"models": [{)";
    const std::vector<std::pair<std::string, std::string>> fields{
        {"id", "\"a\""},
        {"name", "\"A\""},
        {"file", "\"ggml-a.bin\""},
        {"bytes", "10"},
        {"memory", "20"},
        {"operations", "30"},
        {"address", "\"https://a.example/a.bin\""},
        {"sha256", "\"0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef\""}};
    std::string separator;
    bool replaced = false;
    for (const auto& [name, content] : fields) {
        const auto& written = name == field ? value : content;
        replaced = replaced || name == field;
        if (written.empty())
            continue;
        text += separator + "\"" + name + "\": " + written;
        separator = ", ";
    }
    if (!replaced)
        text += separator + "\"" + field + "\": " + value;
    return text + "}]}";
}

std::string refusal(const std::string& json) {
    try {
        SpeechModelCatalogue::parse("The list", json);
    } catch (const ModelError& error) {
        return error.what();
    }
    return {};
}

struct Configuration {
    TemporaryFolder folder;
    StandardFolders folders = [this] {
        StandardFolders made;
        made.configHome = folder.path() / "config";
        made.configDirs = {folder.path() / "firm", folder.path() / "etc/xdg"};
        return made;
    }();
    void person(const std::string& json) { folder.file("config/korvane/speech-models.json", json); }
    void administrator(const std::string& json) { folder.file("etc/xdg/korvane/speech-models.json", json); }
    void firm(const std::string& json) { folder.file("firm/korvane/speech-models.json", json); }
    SpeechModelCatalogue load() const { return SpeechModelCatalogue::load(folders); }
};

TEST(SpeechModelCatalogue, theBuiltInListOffersFourFromTheSmallestToTheBest) {
    const auto catalogue = SpeechModelCatalogue::builtIn();
    std::vector<std::string> ids;
    for (const auto& model : catalogue.offered())
        ids.push_back(model.id);
    EXPECT_THAT(ids, testing::ElementsAre("tiny-q8_0", "base-q8_0", "small-q8_0", "large-v3-turbo-q5_0"));
    EXPECT_GT(catalogue.known().size(), ids.size());
    EXPECT_EQ(catalogue.problem(), "");
}

TEST(SpeechModelCatalogue, everyBuiltInAddressIsEncryptedAndImmutable) {
    std::set<std::string> digests;
    for (const auto& model : SpeechModelCatalogue::builtIn().known()) {
        EXPECT_TRUE(model.address.starts_with("https://"));
        // A commit, not a branch that may point elsewhere tomorrow.
        EXPECT_THAT(model.address, testing::ContainsRegex("/resolve/[0-9a-f]{40}/ggml-[a-z0-9_.-]*\\.bin$"));
        EXPECT_TRUE(model.address.ends_with("/" + model.fileName));
        EXPECT_EQ(model.fileName, "ggml-" + model.id + ".bin");
        EXPECT_TRUE(digests.insert(model.sha256).second);
        EXPECT_EQ(model.id.find(".en"), std::string::npos) << "for English only";
        EXPECT_GT(model.memoryBytes, model.bytes);
    }
}

TEST(SpeechModelCatalogue, modelsAreFoundByIdAndByDigest) {
    const auto catalogue = SpeechModelCatalogue::builtIn();
    ASSERT_TRUE(catalogue.find("base-q8_0"));
    EXPECT_EQ(catalogue.find("base-q8_0")->name, "Whisper base");
    EXPECT_EQ(catalogue.findByDigest(catalogue.find("tiny")->sha256)->id, "tiny");
    EXPECT_FALSE(catalogue.find("none"));
    EXPECT_FALSE(catalogue.findByDigest(""));
}

TEST(SpeechModelCatalogue, aPersonsListReplacesTheBuiltInOne) {
    Configuration configuration;
    configuration.person(oneModel);
    configuration.administrator("{\"mirror\": \"https://other.example\"}");
    const auto catalogue = configuration.load();
    ASSERT_EQ(catalogue.known().size(), 1U);
    EXPECT_EQ(catalogue.known()[0].address, "https://mirror.example/whisper/ggml-a.bin");
    EXPECT_TRUE(catalogue.known()[0].offered);
    EXPECT_EQ(catalogue.problem(), "");
}

TEST(SpeechModelCatalogue, theAdministratorsListComesSecond) {
    Configuration configuration;
    configuration.administrator(oneModel);
    EXPECT_EQ(configuration.load().known()[0].id, "a");
}

TEST(SpeechModelCatalogue, systemsConfigurationsCountInTheirOrder) {
    Configuration configuration;
    configuration.firm(R"({"mirror": "https://firm.example"})");
    configuration.administrator(oneModel);
    EXPECT_EQ(configuration.load().find("tiny-q8_0")->address, "https://firm.example/ggml-tiny-q8_0.bin");
    configuration.firm("{");
    EXPECT_EQ(configuration.load().known()[0].id, "a");
    EXPECT_THAT(configuration.load().problem(), HasSubstr("firm/korvane/speech-models.json"));
}

TEST(SpeechModelCatalogue, aMirrorAloneKeepsTheBuiltInModelsAndTheirDigests) {
    Configuration configuration;
    configuration.person(R"({"mirror": "http://mirror.local/models/"})");
    const auto catalogue = configuration.load();
    const auto builtIn = SpeechModelCatalogue::builtIn();
    ASSERT_EQ(catalogue.known().size(), builtIn.known().size());
    EXPECT_EQ(catalogue.find("base-q8_0")->address, "http://mirror.local/models/ggml-base-q8_0.bin");
    EXPECT_EQ(catalogue.find("base-q8_0")->sha256, builtIn.find("base-q8_0")->sha256);
}

TEST(SpeechModelCatalogue, aDamagedListIsPassedOverAndNamed) {
    const std::vector<std::string> lists{"",
                                         "{",
                                         "[]",
                                         "{}",
                                         "nonsense",
                                         R"({"models": 3})",
                                         R"({"models": [1]})",
                                         R"({"mirror": "ftp://x"})",
                                         std::string(3, '\0')};
    for (const std::string& damaged : lists) {
        Configuration configuration;
        configuration.person(damaged);
        configuration.administrator(oneModel);
        const auto catalogue = configuration.load();
        EXPECT_EQ(catalogue.known().size(), 1U) << damaged;
        EXPECT_THAT(catalogue.problem(), HasSubstr("config/korvane/speech-models.json")) << damaged;
        EXPECT_TRUE(catalogue.problem().ends_with('.'));
    }
    Configuration both;
    both.person("{");
    both.administrator("{");
    EXPECT_EQ(both.load().offered().size(), 4U);
    EXPECT_THAT(both.load().problem(), HasSubstr("config/korvane"));
}

TEST(SpeechModelCatalogue, whatIsNoFileIsPassedOver) {
    Configuration configuration;
    std::filesystem::create_directories(configuration.folders.configHome / "korvane/speech-models.json");
    EXPECT_EQ(configuration.load().offered().size(), 4U);
    EXPECT_THAT(configuration.load().problem(), HasSubstr("is not a file"));
    Configuration huge;
    huge.person(std::string(2 << 20, ' '));
    EXPECT_THAT(huge.load().problem(), HasSubstr("too large"));
}

TEST(SpeechModelCatalogue, sayWhichEntryIsWrongAndWhy) {
    EXPECT_EQ(refusal(modelWith("id", "\"a\"")), "");
    const std::vector<std::array<std::string, 3>> cases{
        {"id", "", "no text \"id\""},
        {"id", "\"a/b\"", "other characters"},
        {"id", "\"..\"", "other characters"},
        {"id", "\"-a\"", "other characters"},
        {"name", "5", "no text \"name\""},
        {"file", "\"../a.bin\"", "plain name"},
        {"file", "\"a.txt\"", "plain name"},
        {"file", "\".a.bin\"", "plain name"},
        {"bytes", "0", "no positive number \"bytes\""},
        {"bytes", "\"10\"", "no positive number \"bytes\""},
        {"bytes", "1e300", "no positive number \"bytes\""},
        {"memory", "-1", "no positive number \"memory\""},
        {"operations", "", "no positive number \"operations\""},
        {"sha256", "\"0123\"", "64 hexadecimal"},
        {"sha256", "\"0123456789ABCDEF0123456789abcdef0123456789abcdef0123456789abcdef\"", "64 hexadecimal"},
        {"address", "\"file:///etc/passwd\"", "no http or https"},
        {"address", "\"https://a b\"", "no http or https"},
        {"address", "\"https://a\\r\\nHost: b\"", "no http or https"},
        {"address", "", "no http or https"},
        {"offered", "1", "neither true nor false"},
    };
    for (const auto& [field, value, words] : cases) {
        const auto sentence = refusal(modelWith(field, value));
        EXPECT_THAT(sentence, HasSubstr("The list, entry 1 of \"models\"")) << field << " " << value;
        EXPECT_THAT(sentence, HasSubstr(words)) << field << " " << value;
    }
}

TEST(SpeechModelCatalogue, noTwoMayHaveOneName) {
    std::string twice = oneModel;
    const auto begin = twice.find("{\"id\"");
    const auto entry = twice.substr(begin, twice.find('}', begin) - begin + 1);
    twice.insert(begin, entry + ", ");
    EXPECT_THAT(refusal(twice), HasSubstr("entry 2"));
}

}  // namespace
