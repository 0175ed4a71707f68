#include "platform/speech/pocketsphinx/PocketSphinxModel.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/speech/SpeechRecognizer.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

std::string number(std::int32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(static_cast<std::uint32_t>(value) >> shift & 0xFF);
    return bytes;
}

/// Two base phones, three phones, one tree node, two state sequences of three.
std::string phoneDefinition() {
    std::string bytes = "BMDF" + number(1) + number(4) + "ABCD";
    for (const std::int32_t count : {2, 3, 3, 6, 12, 2, 2, 3, 1, 0})
        bytes += number(count);
    bytes += std::string("SIL\0AA\0", 7);
    bytes.resize((bytes.size() + 3) / 4 * 4);
    bytes += std::string(1 * 8 + 3 * 12, 'x');
    return bytes + number(6) + std::string(12, 'y');
}

/// Three features of 4 code words for 5 states.
std::string mixtureDump(int bits = 8) {
    std::string bytes;
    for (std::string line : {"title", "feature_count 3", "codebook_count 1", "cluster_count 0",
                             bits == 4 ? "cluster_bits 4" : "!!!"}) {
        line += '\0';
        bytes += number(static_cast<std::int32_t>(line.size())) + line;
    }
    bytes += number(0) + number(4) + number(5);
    return bytes + std::string(3U * 4U * (bits == 4 ? 3U : 5U), 'w');
}

class PocketSphinxModelTest : public testing::Test {
  protected:
    void writeModel(const std::string& folder, const std::string& name = "en-us") {
        root.file(folder + "/" + name + "/mdef", phoneDefinition());
        root.file(folder + "/" + name + "/sendump", mixtureDump());
        root.file(folder + "/" + name + "/feat.params", "-lowerf 130\n-upperf 6800\n");
        root.file(folder + "/" + name + ".lm.bin", "n-grams");
        root.file(folder + "/" + name + "-phone.lm.bin", "phones");
        root.file(folder + "/" + name + ".dict", "a AH");
    }
    PocketSphinxModels models() const {
        StandardFolders folders;
        folders.dataHome = root.path() / "home";
        folders.dataDirs = {root.path() / "local", root.path() / "usr"};
        return {folders, root.path() / "dist"};
    }
    std::optional<PocketSphinxModel> modelIn(const std::string& folder) const {
        return PocketSphinxModel::inFolder(root.path() / folder);
    }
    std::string complaint(const std::string& folder) const {
        try {
            modelIn(folder).value().check();
        } catch (const RecognitionError& error) {
            return error.what();
        }
        return {};
    }

    TemporaryFolder root;
};

TEST_F(PocketSphinxModelTest, theThreePartsAreFoundInTheDistributionsLayout) {
    writeModel("m");
    const auto model = modelIn("m");
    ASSERT_TRUE(model);
    EXPECT_EQ(model->acousticModel.filename(), "en-us");
    EXPECT_EQ(model->languageModel.filename(), "en-us.lm.bin");
    EXPECT_EQ(model->dictionary.filename(), "en-us.dict");
    EXPECT_EQ(model->rateHz, 16000);
}

TEST_F(PocketSphinxModelTest, withoutOneOfItsPartsItIsNoModel) {
    for (const char* part : {"en-us/mdef", "en-us/feat.params", "en-us.lm.bin", "en-us.dict"}) {
        writeModel("m");
        std::filesystem::remove(root.path() / "m" / part);
        EXPECT_FALSE(modelIn("m")) << part;
    }
    EXPECT_FALSE(modelIn("nothing-there"));
}

TEST_F(PocketSphinxModelTest, theRateOfTheModelCounts) {
    writeModel("m");
    root.file("m/en-us/feat.params", "-lowerf 200 -samprate 8000.0\n-nfilt 15\n");
    EXPECT_EQ(modelIn("m")->rateHz, 8000);
    EXPECT_EQ(complaint("m"), "");
    root.file("m/en-us/feat.params", "-samprate nonsense");
    EXPECT_NE(complaint("m"), "");
}

TEST_F(PocketSphinxModelTest, aWholeModelPassesTheCheck) {
    writeModel("m");
    EXPECT_EQ(complaint("m"), "");
    root.file("m/en-us/sendump", mixtureDump(4));
    EXPECT_EQ(complaint("m"), "");
    root.file("m/en-us/mdef", "0.3\n42 n_base\n");
    EXPECT_EQ(complaint("m"), "") << "the text form is left to the engine";
}

TEST_F(PocketSphinxModelTest, aFileCutOffAnywhereIsRefusedByName) {
    const std::pair<const char*, std::string> files[] = {{"en-us/mdef", phoneDefinition()},
                                                         {"en-us/sendump", mixtureDump()},
                                                         {"en-us.dict", "a"},
                                                         {"en-us.lm.bin", "n"}};
    for (const auto& [name, whole] : files) {
        writeModel("m");
        for (std::size_t length = 0; length < whole.size(); ++length) {
            root.file(std::filesystem::path("m") / name, whole.substr(0, length));
            const auto said = complaint("m");
            ASSERT_NE(said.find(std::string(name) + "' is damaged"), std::string::npos)
                << name << " of " << length << " bytes: " << said;
        }
    }
}

TEST_F(PocketSphinxModelTest, absurdNumbersInAFileAreRefused) {
    writeModel("m");
    auto bytes = phoneDefinition();
    bytes.replace(16, 4, number(0x7FFFFFFF));
    root.file("m/en-us/mdef", bytes);
    EXPECT_NE(complaint("m"), "");
    bytes.replace(16, 4, number(-1));
    root.file("m/en-us/mdef", bytes);
    EXPECT_NE(complaint("m"), "");
}

TEST_F(PocketSphinxModelTest, thePersonsModelComesBeforeTheSystemsAndTheDistributions) {
    const Locale locale{"en-US"};
    EXPECT_FALSE(models().find(locale));
    const char* const places[] = {
        "usr/pocketsphinx/model/en-us", "dist/en-us", "usr/korvane/models/pocketsphinx/en-us",
        "local/korvane/models/pocketsphinx/en-US", "home/korvane/models/pocketsphinx/en-US"};
    for (const std::string place : places) {
        writeModel(place);
        const auto found = models().find(locale);
        ASSERT_TRUE(found) << place;
        EXPECT_EQ(found->folder, root.path() / place);
        EXPECT_EQ(found->fromDistribution, place.find("korvane") == std::string::npos);
    }
}

TEST_F(PocketSphinxModelTest, aLocaleIsServedByAFolderOfItsNameOnly) {
    writeModel("dist/en-us");
    for (const char* other : {"en-GB", "en", "ru-RU", "", "en-US-x", "../dist/en-us", "en/us", "."})
        EXPECT_FALSE(models().find(Locale{other})) << other;
    writeModel("home/korvane/models/pocketsphinx/ru-RU", "zero");
    EXPECT_TRUE(models().find(Locale{"ru-RU"}));
}

}  // namespace
}  // namespace korvane
