#include <unistd.h>

#include <cstdlib>

#include "app/VideoFiles.h"
#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

class LoadingVideo : public Screen {
  protected:
    LoadingVideo() { clip_ = folder_.file("clip.mp4", "a clip"); }

    static QUrl urlOf(const std::filesystem::path& path) {
        return QUrl::fromLocalFile(QString::fromStdString(path.string()));
    }
    void finishATranscription() {
        peer().setURL(folder_.path() / "old.mov");
        peer().setWords(manyWords(4));
        peer().setBundle(someBundle());
        peer().setError("something");
        peer().setProgress(1.0);
        peer().setStatus(QStringLiteral("Transcribed — 4 words"));
        record();
    }
    /// Drops it; it must be refused by nothing but this sentence.
    void expectRefusal(const QUrl& url, const std::string& sentence) {
        finishATranscription();
        view().openDroppedFile(url);
        EXPECT_EQ(log_, std::vector<std::string>{"error " + sentence});
        log_.clear();
        view_ = makeView(defaults_);
    }

    std::filesystem::path clip_;
    const std::vector<std::string> loaded_{"url clip.mp4", "segments 0", "selected 0",  "bundle none",
                                           "error none",   "progress 0", "status Ready"};
};

TEST_F(LoadingVideo, thePanelIsAskedForOneMovieOfTheTwoTypesInTheirOrder) {
    view().openFilePicker();
    ASSERT_EQ(panels_.requests.size(), 1u);
    EXPECT_EQ(panels_.requests[0].title, "Select a Video");
    ASSERT_EQ(panels_.requests[0].allowedTypes.size(), 2u);
    EXPECT_EQ(panels_.requests[0].allowedTypes[0].mimeType, "video/mp4");
    EXPECT_EQ(panels_.requests[0].allowedTypes[1].mimeType, "video/quicktime");
}

TEST_F(LoadingVideo, aChosenFileResetsTheScreenInOrder) {
    finishATranscription();
    panels_.answer = clip_;
    view().openFilePicker();
    EXPECT_EQ(log_, loaded_);
    EXPECT_EQ(view().selectedURL(), clip_);
    EXPECT_EQ(view().fileNameText().toStdString(), "clip.mp4");
}

TEST_F(LoadingVideo, aFileThatThePanelShouldNotHaveTakenIsRefusedAloud) {
    finishATranscription();
    panels_.answer = folder_.file("notes.txt", "no video");
    view().openFilePicker();
    EXPECT_EQ(log_, std::vector<std::string>{
                        "error “notes.txt” is not an MP4 or QuickTime video: choose a file that "
                        "ends in .mp4 or .mov."});
}

TEST_F(LoadingVideo, aCancelledPanelChangesNothing) {
    finishATranscription();
    view().openFilePicker();
    EXPECT_EQ(panels_.requests.size(), 1u);
    EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_F(LoadingVideo, theStyleAndTheLanguageAreKept) {
    SubtitleSettings style;
    style.fontSize = 40.0;
    view().setSubtitleSettings(style);
    view().selectLanguage(3);
    panels_.answer = clip_;
    view().openFilePicker();
    EXPECT_EQ(view().subtitleSettings(), style);
    EXPECT_EQ(view().selectedLanguageIndex(), 3);
}

TEST_F(LoadingVideo, theNameIsShownOnceThereIsAFile) {
    EXPECT_EQ(view().fileNameText().toStdString(), "No file selected");
    EXPECT_FALSE(view().hasVideo());
    view().openDroppedFile(urlOf(clip_));
    EXPECT_EQ(view().fileNameText().toStdString(), "clip.mp4");
    EXPECT_TRUE(view().hasVideo());
}

TEST_F(LoadingVideo, aDroppedMovieGoesTheSameWayAsAChosenOne) {
    finishATranscription();
    view().openDroppedFile(urlOf(clip_));
    EXPECT_EQ(log_, loaded_);
    EXPECT_EQ(view().selectedURL(), clip_);
}

TEST_F(LoadingVideo, bothTypesAndTheirKindsAreTakenWhateverTheirSpelling) {
    for (const char* name : {"a.mp4", "b.mov", "c.MOV", "d.m4v", "e.qt", "with blank & umlaut ä %20#.mp4"}) {
        const auto path = folder_.file(name, "a clip");
        EXPECT_EQ(reasonAgainstVideo(urlOf(path)), std::nullopt) << name;
        view().openDroppedFile(urlOf(path));
        EXPECT_EQ(view().selectedURL(), path);
    }
}

TEST_F(LoadingVideo, aMovieWithoutASuffixIsKnownByItsContent) {
    const auto path = folder_.file("clip", std::string("\0\0\0\x18"
                                                       "ftypmp42\0\0\0\0mp42isom",
                                                       24));
    EXPECT_EQ(reasonAgainstVideo(urlOf(path)), std::nullopt);
}

TEST_F(LoadingVideo, aWrongTypeIsRefusedAloud) {
    expectRefusal(urlOf(folder_.file("notes.txt", "words")),
                  "“notes.txt” is not an MP4 or QuickTime video: choose a file that ends in .mp4 or .mov.");
    expectRefusal(urlOf(folder_.file("sound.mp3", "words")),
                  "“sound.mp3” is not an MP4 or QuickTime video: choose a file that ends in .mp4 or .mov.");
    expectRefusal(urlOf(folder_.file("film.mkv", "words")),
                  "“film.mkv” is not an MP4 or QuickTime video: choose a file that ends in .mp4 or .mov.");
}

TEST_F(LoadingVideo, aFileThatIsGoneIsRefusedAloud) {
    std::filesystem::remove(clip_);
    expectRefusal(urlOf(clip_), "“clip.mp4” is not there any more: choose the video where it lies now.");
    std::filesystem::create_symlink(clip_, folder_.path() / "link.mp4");
    expectRefusal(urlOf(folder_.path() / "link.mp4"),
                  "“link.mp4” is not there any more: choose the video where it lies now.");
}

TEST_F(LoadingVideo, aFolderIsRefusedAloud) {
    std::filesystem::create_directory(folder_.path() / "movies.mp4");
    expectRefusal(urlOf(folder_.path() / "movies.mp4"),
                  "“movies.mp4” is not a file: choose a single MP4 or QuickTime video.");
    expectRefusal(QUrl(QStringLiteral("file:///dev/null")),
                  "“null” is not a file: choose a single MP4 or QuickTime video.");
}

TEST_F(LoadingVideo, whatLiesElsewhereIsRefusedAloud) {
    expectRefusal(QUrl(QStringLiteral("https://example.com/clip.mp4")),
                  "“https://example.com/clip.mp4” is not a file on this computer: download it and open the "
                  "copy.");
}

TEST_F(LoadingVideo, aLinkToAMovieIsAMovie) {
    std::filesystem::create_symlink(clip_, folder_.path() / "link.mp4");
    view().openDroppedFile(urlOf(folder_.path() / "link.mp4"));
    EXPECT_EQ(view().fileNameText().toStdString(), "link.mp4");
}

TEST_F(LoadingVideo, nothingHappensWhileAnOperationRuns) {
    panels_.answer = clip_;
    for (const auto& set : {&ContentViewPeer::setProcessing, &ContentViewPeer::setBuildingPreview,
                            &ContentViewPeer::setExporting}) {
        ContentViewPeer p = peer();
        (p.*set)(true);
        view().openFilePicker();
        view().openDroppedFile(urlOf(clip_));
        view().openDroppedFile(urlOf("gone.mp4"));
        EXPECT_TRUE(panels_.requests.empty());
        EXPECT_FALSE(view().hasVideo());
        EXPECT_FALSE(view().hasError());
        view().openDroppedFiles({urlOf(clip_), urlOf("gone.mp4")});
        EXPECT_FALSE(view().hasError());
        EXPECT_FALSE(view().acceptsDrop({urlOf(clip_)}));
        (p.*set)(false);
    }
}

TEST_F(LoadingVideo, anyLocalFileMayBeDroppedSoThatItGetsAnAnswer) {
    EXPECT_TRUE(view().acceptsDrop({urlOf(clip_)}));
    EXPECT_TRUE(view().acceptsDrop({urlOf(folder_.path() / "notes.txt")}));
    EXPECT_TRUE(view().acceptsDrop({urlOf(clip_), urlOf(folder_.path() / "notes.txt")}));
    EXPECT_FALSE(view().acceptsDrop({QUrl(QStringLiteral("https://example.com/clip.mp4"))}));
    EXPECT_FALSE(view().acceptsDrop({QUrl()}));
    EXPECT_FALSE(view().acceptsDrop({}));
}

TEST_F(LoadingVideo, severalFilesAtOnceAreRefusedAloudAndChangeNothing) {
    finishATranscription();
    view().openDroppedFiles({urlOf(clip_), urlOf(clip_)});
    EXPECT_EQ(log_, std::vector<std::string>{"error One video is loaded at a time: drop a single file."});
    view().openDroppedFiles({urlOf(clip_)});
    EXPECT_EQ(view().selectedURL(), clip_);
    EXPECT_FALSE(view().hasError());
}

TEST_F(LoadingVideo, aSecondPanelDoesNotOpenOverTheFirst) {
    panels_.meanwhile = [this] { view().openFilePicker(); };
    view().openFilePicker();
    EXPECT_EQ(panels_.requests.size(), 1u);
    panels_.meanwhile = [] {};
    view().openFilePicker();
    EXPECT_EQ(panels_.requests.size(), 2u);
}

TEST_F(LoadingVideo, workThatBeganBehindThePanelKeepsItsVideo) {
    panels_.answer = clip_;
    panels_.meanwhile = [this] { peer().setProcessing(true); };
    view().openFilePicker();
    EXPECT_FALSE(view().hasVideo());
}

TEST_F(LoadingVideo, theScreenMayGoWhileThePanelIsOpen) {
    panels_.answer = clip_;
    panels_.meanwhile = [this] { view_.reset(); };
    view().openFilePicker();
    EXPECT_EQ(view_, nullptr);
}

/// As a person without the right to read it; an administrator would be let in.
[[noreturn]] void tellWhetherRefused(const QUrl& url) {
    const uid_t nobody = 65534;
    if (geteuid() == 0 && seteuid(nobody) != 0)
        std::_Exit(2);
    const auto reason = reasonAgainstVideo(url);
    std::fputs(reason.value_or("taken").c_str(), stderr);
    std::_Exit(0);
}

using LoadingVideoDeathTest = LoadingVideo;

TEST_F(LoadingVideoDeathTest, aFileThatMayNotBeReadIsRefused) {
    namespace fs = std::filesystem;
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(clip_, fs::perms::none);
    EXPECT_EXIT(tellWhetherRefused(urlOf(clip_)), testing::ExitedWithCode(0),
                "“clip.mp4” can’t be read: change its permissions, or choose a copy of it.");
}

TEST_F(LoadingVideoDeathTest, aFileInAFolderThatMayNotBeEnteredIsRefused) {
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
    const auto closed = folder_.path() / "closed" / "clip.mp4";
    folder_.file("closed/clip.mp4", "a clip");
    std::filesystem::permissions(closed.parent_path(), std::filesystem::perms::none);
    EXPECT_EXIT(tellWhetherRefused(urlOf(closed)), testing::ExitedWithCode(0),
                "“clip.mp4” can’t be reached: check the permissions of its folder, or choose a copy of it.");
    std::filesystem::permissions(closed.parent_path(), std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace korvane
