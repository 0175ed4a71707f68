// The real worker, with the private copy of its library, beside plug-ins for graphics cards that are no good.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/speech/whisper/WhisperKeeper.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

class WhisperCardTest : public testing::Test {
  protected:
    WhisperCardTest() {
        // Whatever devices this machine has, or none.
        setenv("GGML_VK_VISIBLE_DEVICES", "0", 1);
        settings.command = whisperCommand(KORVANE_PROGRAMS);
        const auto name = std::find(settings.command.begin(), settings.command.end(), "--backends");
        for (const auto& file : fs::directory_iterator(name[1]))
            if (file.path().filename() != "gpu")
                fs::create_symlink(fs::canonical(file.path()), library / file.path().filename());
        name[1] = library.string();
        const fixtures::ScriptedModel hello{{{" Hello", 20}, {" world", 90}}, 110};
        hello.write(folder.path() / "ggml-test.bin");
    }
    ~WhisperCardTest() override { unsetenv("GGML_VK_VISIBLE_DEVICES"); }

    std::string hears() {
        const std::vector<float> hum(35200, 0.1F);
        WhisperKeeper::Loan loan(keeper.emplace(settings), folder.path() / "ggml-test.bin", {});
        std::string text;
        for (const auto& segment : loan.recognize(hum, "en"))
            for (const auto& token : segment.tokens)
                text += token.bytes;
        return text;
    }
    bool isWithoutCard() const {
        const auto process = fs::path("/proc") / std::to_string(keeper->processId());
        return contentOf(process / "cmdline").find(whisperWithoutCard) != std::string::npos;
    }

    const TemporaryFolder folder;
    const TemporaryFolder libraryFolder;
    const fs::path library = libraryFolder.path();
    WhisperSettings settings;
    std::optional<WhisperKeeper> keeper;
};

TEST_F(WhisperCardTest, aDriverThatEndsTheProcessIsNotNoticed) {
    fs::create_directory(library / "gpu");
    fs::create_symlink(KORVANE_FAULTY_PLUGIN, library / "gpu" / "libggml-vulkan.so");
    EXPECT_EQ(hears(), " Hello world");
    EXPECT_TRUE(isWithoutCard());
}

TEST_F(WhisperCardTest, whoDoesNotWantTheCardNeverLoadsTheDriver) {
    fs::create_directory(library / "gpu");
    fs::create_symlink(KORVANE_FAULTY_PLUGIN, library / "gpu" / "libggml-vulkan.so");
    settings.command.emplace_back(whisperWithoutCard);
    const WhisperWorker worker(settings.command, folder.path() / "ggml-test.bin", 1, {}, {});
    EXPECT_EQ(worker.backend(), "CPU");
}

TEST_F(WhisperCardTest, aPluginThatIsNoneChangesNothing) {
    libraryFolder.file("gpu/libggml-vulkan.so", "no plug-in");
    EXPECT_EQ(hears(), " Hello world");
    EXPECT_FALSE(isWithoutCard());
}

TEST_F(WhisperCardTest, withoutTheFolderOrWithAnEmptyOneNothingChanges) {
    EXPECT_EQ(hears(), " Hello world");
    EXPECT_FALSE(isWithoutCard());
    fs::create_directory(library / "gpu");
    EXPECT_EQ(hears(), " Hello world");
    EXPECT_FALSE(isWithoutCard());
}

}  // namespace
}  // namespace korvane
