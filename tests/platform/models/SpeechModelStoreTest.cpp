#include "platform/models/SpeechModelStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "StoreFixture.h"
#include "platform/tasks/Cancellation.h"

using namespace korvane;
using namespace korvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class SpeechModelStoreTest : public StoreFixture {};

TEST_F(SpeechModelStoreTest, isEmptyWhereNothingIs) {
    EXPECT_TRUE(store().installed().empty());
    EXPECT_TRUE(store().unusable().empty());
    EXPECT_FALSE(store().inUse());
    EXPECT_EQ(store().folder(), folder.path() / "data/korvane/models/whisper");
}

TEST_F(SpeechModelStoreTest, readsTheSystemsFoldersToo) {
    folder.file(systems + "ggml-everyone.bin", larger);
    folder.file("local/korvane/models/whisper/ggml-known.bin", small);
    ASSERT_THAT(ids(), ElementsAre("everyone", "known")) << "the one with less work first";
    EXPECT_FALSE(store().find("known")->own);
    EXPECT_EQ(store().find("known")->name, "Known");
    EXPECT_EQ(store().find("everyone")->name, "Whisper everyone");
}

TEST_F(SpeechModelStoreTest, thePersonsOwnHidesTheSystems) {
    folder.file(systems + "ggml-known.bin", small);
    folder.file(own + "ggml-known.bin", small);
    ASSERT_THAT(ids(), ElementsAre("known"));
    EXPECT_TRUE(store().find("known")->own);
    store().remove("known");
    EXPECT_FALSE(store().find("known")->own);
    EXPECT_THAT(refusal([&] { store().remove("known"); }), HasSubstr("only an administrator"));
    EXPECT_THAT(refusal([&] { store().remove("none"); }), HasSubstr("no installed model"));
}

TEST_F(SpeechModelStoreTest, strangeFilesAreNamedAndDontDisturb) {
    folder.file(own + "ggml-good.bin", larger);
    folder.file(own + "ggml-short.bin", small.substr(0, small.size() / 2));
    folder.file(own + "ggml-known.bin", "not a model");
    folder.file(own + "english.bin", smallWhisperModel({.vocabulary = 51864}));
    folder.file(own + "notes.txt", "hello");
    folder.file(own + "ggml-new.bin.part", small);
    folder.file(own + ".adding-x.bin", small);
    fs::create_directories(folder.path() / own / "folder.bin");
    fs::create_symlink("nowhere", folder.path() / own / "link.bin");
    EXPECT_THAT(ids(), ElementsAre("good"));
    std::vector<std::string> names;
    for (const auto& file : store().unusable()) {
        names.push_back(file.file.filename().string());
        EXPECT_TRUE(file.reason.ends_with('.')) << file.reason;
    }
    EXPECT_THAT(names,
                ElementsAre("english.bin", "folder.bin", "ggml-known.bin", "ggml-short.bin", "link.bin"));
}

TEST_F(SpeechModelStoreTest, aLinkToAModelIsAModel) {
    const auto elsewhere = folder.file("big-disk/m.bin", larger);
    fs::create_directories(folder.path() / own);
    fs::create_symlink(elsewhere, folder.path() / own / "linked.bin");
    EXPECT_THAT(ids(), ElementsAre("linked"));
    store().remove("linked");
    EXPECT_TRUE(fs::exists(elsewhere));
}

TEST_F(SpeechModelStoreTest, anAddedFileWithAKnownDigestGetsItsName) {
    const auto file = folder.file("downloads/model (1).bin", small);
    double last = 0;
    const auto model = store().add(file, {}, [&](double share) { last = share; });
    EXPECT_EQ(model.id, "known");
    EXPECT_EQ(model.operationsPerSecond, 77e12);
    EXPECT_TRUE(model.own);
    EXPECT_EQ(last, 1);
    EXPECT_EQ(contentOf(folder.path() / own / "ggml-known.bin"), small);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(SpeechModelStoreTest, anUnknownFileKeepsItsName) {
    const auto model = store().add(folder.file("downloads/ggml-mine.bin", larger));
    EXPECT_EQ(model.id, "mine");
    EXPECT_GT(model.operationsPerSecond, 0);
    EXPECT_GT(model.memoryBytes, larger.size());
    EXPECT_EQ(store().add(folder.file("downloads/.odd name", larger)).file.filename(), "odd name.bin");
    EXPECT_THAT(ids(), testing::UnorderedElementsAre("mine", "odd name"));
}

TEST_F(SpeechModelStoreTest, anUnknownFileCanNotPassForAKnownOne) {
    EXPECT_THAT(refusedFile(folder.file("downloads/ggml-known.bin", larger)), HasSubstr("is not the Known"));
    EXPECT_TRUE(ids().empty());
}

TEST_F(SpeechModelStoreTest, anUnknownFileDoesNotTakeTheIdOfAListedModel) {
    const auto model = store().add(folder.file("downloads/known.bin", larger));
    EXPECT_EQ(model.id, "known.bin");
    EXPECT_FALSE(store().find("known")) << "it would seem to be installed";
    EXPECT_EQ(store().find("known.bin")->file.filename(), "known.bin");
}

TEST_F(SpeechModelStoreTest, twoFilesOfOneNameWithAndWithoutItsBeginningAreTwoModels) {
    folder.file(own + "x.bin", small);
    folder.file(own + "ggml-x.bin", larger);
    EXPECT_THAT(ids(), testing::UnorderedElementsAre("x", "x.bin"));
    EXPECT_EQ(store().find("x")->file.filename(), "ggml-x.bin");
    EXPECT_EQ(store().find("x.bin")->file.filename(), "x.bin");
    store().remove("x.bin");
    EXPECT_THAT(ids(), ElementsAre("x"));
    EXPECT_TRUE(fs::exists(folder.path() / own / "ggml-x.bin"));
}

TEST_F(SpeechModelStoreTest, theSystemsFileOfAnotherNameIsAnotherModel) {
    folder.file(own + "x.bin", small);
    folder.file(systems + "ggml-x.bin", larger);
    folder.file(systems + "x.bin", larger);
    ASSERT_THAT(ids(), testing::UnorderedElementsAre("x", "ggml-x.bin"));
    EXPECT_TRUE(store().find("x")->own) << "of one name, the person's own";
}

TEST_F(SpeechModelStoreTest, theChosenFileStaysTheChosenOneWhenAnotherTakesItsId) {
    folder.file(own + "x.bin", small);
    store().use("x");
    const auto added = store().add(folder.file("downloads/ggml-x.bin", larger));
    EXPECT_EQ(added.id, "x");
    EXPECT_EQ(store().inUse()->file.filename(), "x.bin");
}

TEST_F(SpeechModelStoreTest, aNameOfNothingButAnEndingIsFoundAgain) {
    store().add(folder.file("downloads/.bin", larger));
    EXPECT_THAT(ids(), ElementsAre("bin"));
}

TEST_F(SpeechModelStoreTest, whatAKilledProgramLeftGoesAndWhatAnotherIsCopyingStays) {
    const auto left = folder.file(own + ".adding-aaaaaa", "a few gigabytes");
    const auto copied = folder.file(own + ".adding-bbbbbb", "in progress");
    const int other = ::open(copied.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    store().add(folder.file("downloads/ggml-mine.bin", larger));
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(copied));
    ::close(other);
}

TEST_F(SpeechModelStoreTest, aFileThatIsInTheFolderAlreadyStays) {
    const auto file = folder.file(own + "ggml-mine.bin", larger);
    EXPECT_EQ(store().add(file).id, "mine");
    EXPECT_EQ(contentOf(file), larger);
    store().add(folder.file("downloads/ggml-mine.bin", larger));
    EXPECT_THAT(ids(), ElementsAre("mine"));
}

TEST_F(SpeechModelStoreTest, whatIsNoUsableModelIsNotAdded) {
    EXPECT_THAT(refusedFile(folder.path() / "none"), HasSubstr("There is no file"));
    EXPECT_THAT(refusedFile(folder.path()), HasSubstr("is a folder"));
    EXPECT_THAT(refusedFile(folder.file("a.bin", "")), HasSubstr("not a Whisper model"));
    EXPECT_THAT(refusedFile(folder.file("b.bin", small.substr(0, 100000))), HasSubstr("cut off"));
    EXPECT_THAT(refusedFile(folder.file("c.bin", smallWhisperModel({.vocabulary = 51864}))),
                HasSubstr("English only"));
    EXPECT_FALSE(fs::exists(folder.path() / own));
}

TEST_F(SpeechModelStoreTest, aStopLeavesNothingBehind) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(store().add(folder.file("a.bin", larger), stop.get_token()), CancellationError);
    EXPECT_TRUE(fs::is_empty(folder.path() / own));
}

TEST_F(SpeechModelStoreTest, theChosenModelIsRememberedWhileItIsInstalled) {
    folder.file(own + "ggml-known.bin", small);
    folder.file(own + "ggml-larger.bin", larger);
    EXPECT_EQ(store().inUse()->id, "known") << "the list says that it does more work";
    store().use("larger");
    EXPECT_EQ(store().inUse()->id, "larger");
    store().remove("larger");
    EXPECT_EQ(store().inUse()->id, "known");
    EXPECT_THAT(refusal([&] { store().use("larger"); }), HasSubstr("no installed model"));
}

TEST_F(SpeechModelStoreTest, whatSomebodyHasJustGotIsUsed) {
    folder.file(systems + "ggml-known.bin", small);
    folder.file(own + "ggml-larger.bin", larger);
    ASSERT_EQ(store().inUse()->id, "known") << "the best one, which the administrator has installed";
    store().useFromNow("larger");
    EXPECT_EQ(store().inUse()->id, "larger");
    store().useFromNow("a voice model");
    EXPECT_EQ(store().inUse()->id, "larger");
    store().remove("larger");
    EXPECT_EQ(store().inUse()->id, "known");
}

TEST_F(SpeechModelStoreTest, aDamagedChoiceIsNone) {
    folder.file(own + "ggml-known.bin", small);
    for (const std::string text : {"", "{", "[]", R"({"id": 5})", R"({"id": "gone"})"}) {
        folder.file("config/korvane/speechModel.json", text);
        EXPECT_EQ(store().inUse()->id, "known");
    }
}

TEST_F(SpeechModelStoreTest, aChoiceThatCanNotBeKeptIsSaid) {
    folder.file(own + "ggml-known.bin", small);
    folder.file("config", "a file is in the way");
    EXPECT_THAT(refusal([&] { store().use("known"); }), HasSubstr("can't be kept"));
}

TEST_F(SpeechModelStoreTest, aModelIsMeantByItsIdOrByAnyFile) {
    folder.file(own + "ggml-known.bin", small);
    EXPECT_EQ(store().resolve("known").file, folder.path() / own / "ggml-known.bin");
    const auto file = folder.file("elsewhere/x.bin", larger);
    EXPECT_EQ(store().resolve(file.string()).file, file);
    EXPECT_THAT(refusal([&] { store().resolve("nothing"); }), HasSubstr("no installed model and no file"));
    EXPECT_THAT(refusal([&] { store().resolve(""); }), HasSubstr("no installed model"));
    EXPECT_THAT(refusal([&] { store().resolve(folder.file("t.bin", "text").string()); }),
                HasSubstr("not a Whisper"));
}

TEST_F(SpeechModelStoreTest, withoutAnyHomeOnlyTheSystemsAreThere) {
    folder.file(systems + "ggml-known.bin", small);
    folders.dataHome.clear();
    folders.configHome.clear();
    EXPECT_THAT(ids(), ElementsAre("known"));
    EXPECT_TRUE(store().inUse());
    EXPECT_THAT(refusal([&] { store().folder(); }), HasSubstr("HOME"));
    EXPECT_THAT(refusal([&] { store().use("known"); }), HasSubstr("can't be kept"));
}

}  // namespace
