// Files among the models that can't be used: each is named with its reason, and goes when it is told to.
#include "StoreFixture.h"

using namespace korvane;
using namespace korvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class UnusableModels : public StoreFixture {
  protected:
    std::string cutOff() const { return small.substr(0, small.size() / 2); }
    std::vector<std::string> unusableIds() const {
        std::vector<std::string> ids;
        for (const auto& file : store().unusable())
            ids.push_back(file.id);
        return ids;
    }
};

TEST_F(UnusableModels, aDamagedOneHasTheIdThatItWouldHaveAndASentence) {
    folder.file(own + "ggml-known.bin", cutOff());
    folder.file(own + "ggml-mine.bin", small.substr(0, 100));
    folder.file(systems + "english.bin", smallWhisperModel({.vocabulary = 51864}));
    EXPECT_THAT(unusableIds(), ElementsAre("known", "mine", "english"));
    const auto known = store().findUnusable("known");
    EXPECT_EQ(known->name, "Known");
    EXPECT_TRUE(known->listed);
    EXPECT_TRUE(known->own);
    EXPECT_EQ(known->reason, "\"ggml-known.bin\" is cut off: it isn't all of a model.");
    EXPECT_EQ(store().findUnusable("mine")->name, "ggml-mine.bin");
    EXPECT_FALSE(store().findUnusable("mine")->listed);
    EXPECT_FALSE(store().findUnusable("english")->own);
    EXPECT_FALSE(store().findUnusable("none"));
}

TEST_F(UnusableModels, itIsNotSaidToBeMissing) {
    folder.file(own + "ggml-known.bin", cutOff());
    EXPECT_THAT(refusal([&] { store().use("known"); }), HasSubstr("\"ggml-known.bin\" is cut off"));
    EXPECT_THAT(refusal([&] { store().resolve("known"); }), HasSubstr("\"ggml-known.bin\" is cut off"));
    EXPECT_FALSE(store().find("known"));
    EXPECT_FALSE(store().inUse());
}

TEST_F(UnusableModels, itCanBeRemoved) {
    folder.file(own + "ggml-known.bin", cutOff());
    folder.file(own + "ggml-known.bin.part", cutOff());
    folder.file(own + "bad.bin", "not a model");
    fs::create_symlink("nowhere", folder.path() / own / "link.bin");
    for (const char* id : {"known", "bad", "link"})
        store().remove(id);
    EXPECT_TRUE(fs::is_empty(folder.path() / own));
    folder.file(systems + "bad.bin", "not a model");
    EXPECT_THAT(refusal([&] { store().remove("bad"); }), HasSubstr("only an administrator"));
}

TEST_F(UnusableModels, aFolderWithSomethingInItIsNotRemoved) {
    folder.file(own + "folder.bin/photo.jpg", "dear");
    EXPECT_THAT(unusableIds(), ElementsAre("folder"));
    EXPECT_THAT(refusal([&] { store().remove("folder"); }), HasSubstr("can't be removed"));
    EXPECT_EQ(contentOf(folder.path() / own / "folder.bin/photo.jpg"), "dear");
}

TEST_F(UnusableModels, theSystemsWholeOneServesWhileThePersonsIsDamaged) {
    folder.file(own + "ggml-known.bin", cutOff());
    folder.file(systems + "ggml-known.bin", small);
    EXPECT_THAT(ids(), ElementsAre("known"));
    EXPECT_FALSE(store().find("known")->own);
    EXPECT_TRUE(unusableIds().empty()) << "nobody misses it";
}

TEST_F(UnusableModels, oneThatIsDamagedEverywhereIsNamedOnceAndAsThePersons) {
    folder.file(own + "ggml-x.bin", cutOff());
    folder.file(systems + "ggml-x.bin", "not a model");
    ASSERT_THAT(unusableIds(), ElementsAre("x"));
    EXPECT_TRUE(store().findUnusable("x")->own);
    store().remove("x");
    ASSERT_THAT(unusableIds(), ElementsAre("x"));
    EXPECT_FALSE(store().findUnusable("x")->own);
}

TEST_F(UnusableModels, noNameThatAnotherHasForItsIdIsGivenTwice) {
    for (const char* name : {"ggml-x.bin", "ggml-x.bin.bin", "x.bin"})
        folder.file(own + name, "not a model");
    const auto last = (folder.path() / own / "x.bin").string();
    EXPECT_THAT(unusableIds(), ElementsAre("x", "x.bin", last));
    store().remove(last);
    EXPECT_THAT(unusableIds(), ElementsAre("x", "x.bin"));
}

TEST_F(UnusableModels, oneOfTwoWithTheSameIdIsMeantByItsWholeName) {
    folder.file(own + "ggml-x.bin", cutOff());
    folder.file(own + "x.bin", small);
    EXPECT_THAT(unusableIds(), ElementsAre("x"));
    EXPECT_THAT(ids(), ElementsAre("x.bin"));
    store().remove("x");
    EXPECT_THAT(ids(), ElementsAre("x"));
}

}  // namespace
