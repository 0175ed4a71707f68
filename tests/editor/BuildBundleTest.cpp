#include <gtest/gtest.h>

#include "editor/ExportError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/editor/EditorFixture.h"

namespace korvane {
namespace {

struct BuildBundleTest : testing::Test {
    EditorFixture fixture;
    int opened = 0;
    SubtitleSettings style;

    BuildBundleTest() {
        fixture.onOpen = [this] { ++opened; };
    }
    ExportBundle build(const std::vector<SpeechSegment>& words, const std::stop_token& stop = {}) {
        return fixture.editor.buildBundle("talk.mp4", words, style, stop);
    }
    ExportError failure(const std::vector<SpeechSegment>& words) {
        try {
            build(words);
        } catch (const ExportError& error) {
            return error;
        }
        throw std::runtime_error("nothing was thrown");
    }
};

TEST_F(BuildBundleTest, withoutWordsNothingIsOpenedNotEvenAFileThatIsNotThere) {
    EXPECT_EQ(failure({}), ExportError::noSegmentsSelected());
    EXPECT_STREQ(failure({}).what(), "No segments are selected.");
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(fixture.log.empty());
    CollectingMainQueue queue;
    const VideoEditor real(queue, [](const std::string&) {});
    EXPECT_THROW(real.buildBundle("/nowhere/none.mp4", {}, style, {}), ExportError);
    EXPECT_THROW(real.buildBundle("/nowhere/none.mp4", {{"w", 1.0, 2.0}}, style, {}), MediaError);
}

TEST_F(BuildBundleTest, aFirstWordAtTwoSecondsHasALeadInOfAQuarterSecond) {
    const ExportBundle bundle = build({{"a", 2.0, 2.5}, {"b", 3.0, 3.5}});
    EXPECT_EQ(bundle.prerollDuration(), MediaTime(150, 600));
    EXPECT_EQ(bundle.subtitleEntries(), (std::vector<SubtitleEntry>{{0.25, 1.25, "a b"}}));
}

TEST_F(BuildBundleTest, aFirstWordAtTheBeginningHasNoLeadIn) {
    const ExportBundle bundle = build({{"a", 0.0, 0.5}});
    EXPECT_EQ(bundle.prerollDuration(), kZeroTime);
    EXPECT_EQ(bundle.subtitleEntries(), (std::vector<SubtitleEntry>{{0.0, 0.5, "a"}}));
}

TEST_F(BuildBundleTest, theArgumentsComeBackAsTheyWereGivenNotAsTheyWereUsed) {
    const std::vector<SpeechSegment> words{{"late", 5.0, 5.5}, {"none", 3.0, 3.0}, {"early", 1.0, 1.5}};
    style.fontSize = 99.0;
    style.hasPopAnimation = !style.hasPopAnimation;
    const ExportBundle bundle = build(words);
    EXPECT_EQ(bundle.videoURL(), "talk.mp4");
    ASSERT_EQ(bundle.segments().size(), 3U);
    for (std::size_t i = 0; i < words.size(); ++i) {
        EXPECT_EQ(bundle.segments()[i].text(), words[i].text());
        EXPECT_EQ(bundle.segments()[i].start(), words[i].start());
        EXPECT_EQ(bundle.segments()[i].end(), words[i].end());
    }
    EXPECT_EQ(bundle.subtitleSettings().fontSize, 99.0);
    EXPECT_EQ(bundle.subtitleSettings().hasPopAnimation, style.hasPopAnimation);
    EXPECT_EQ(bundle.subtitleEntries().size(), 1U);
}

TEST_F(BuildBundleTest, theItemPlaysTheTimelineThatTheExportWrites) {
    const std::vector<SpeechSegment> words{{"a", 2.0, 2.5}, {"b", 3.0, 3.5}};
    const CompositionData data = fixture.build(words);
    const ExportBundle bundle = build(words);
    const PlayerItem& item = *bundle.previewPlayerItem();
    EXPECT_EQ(item.status(), PlayerItemStatus::unknown);
    EXPECT_EQ(item.composition()->duration(), MediaTime(750, 600));
    EXPECT_EQ(item.composition()->duration(), data.composition->duration());
    EXPECT_EQ(item.composition()->tracks().size(), data.composition->tracks().size());
    EXPECT_EQ(item.videoComposition().renderSize, (Size{1080.0, 1920.0}));
    EXPECT_EQ(item.videoComposition().frameDuration, MediaTime(1, 30));
    EXPECT_EQ(item.videoComposition().instructions.at(0).layerInstructions.at(0).transform,
              data.videoComposition.instructions.at(0).layerInstructions.at(0).transform);
    EXPECT_FALSE(item.videoComposition().animationTool) << "the screen draws the subtitles itself";
    EXPECT_EQ(item.audioMix(), data.audioMix);
    EXPECT_TRUE(item.audioMix().has_value());
}

TEST_F(BuildBundleTest, aSilentSourcePlaysWithoutAMix) {
    fixture.asset->audioTracks.clear();
    EXPECT_FALSE(build({{"a", 1.0, 2.0}}).previewPlayerItem()->audioMix().has_value());
}

TEST_F(BuildBundleTest, copiesShareThePlayerItemAndANewBundleHasItsOwn) {
    const ExportBundle bundle = build({{"a", 1.0, 2.0}});
    const ExportBundle copy = bundle;
    EXPECT_EQ(copy.previewPlayerItem(), bundle.previewPlayerItem());
    EXPECT_NE(build({{"a", 1.0, 2.0}}).previewPlayerItem(), bundle.previewPlayerItem());
    EXPECT_EQ(opened, 2) << "the source is read again each time";
}

TEST_F(BuildBundleTest, errorsOfTheTimelinePassThroughUnchanged) {
    EXPECT_EQ(failure({{"none", 0.0, 0.0}}), ExportError::noContentInserted());
    fixture.troubles.missingTracks = {1};
    EXPECT_EQ(failure({{"a", 1.0, 2.0}}), ExportError::compositionFailed());
    fixture.asset->videoTracks.clear();
    EXPECT_EQ(failure({{"a", 1.0, 2.0}}), ExportError::noVideoTrack());
    fixture.asset->beforeLoad = [](const std::string&) { throw MediaError("can't read it"); };
    EXPECT_THROW(build({{"a", 1.0, 2.0}}), MediaError);
}

TEST_F(BuildBundleTest, whenEveryWordIsSkippedTheLeadInPlaysAlone) {
    const ExportBundle bundle = build({{"none", 3.0, 3.0}});
    EXPECT_EQ(bundle.prerollDuration(), MediaTime(150, 600));
    EXPECT_EQ(bundle.previewPlayerItem()->composition()->duration(), MediaTime(150, 600));
    EXPECT_TRUE(bundle.subtitleEntries().empty());
}

TEST_F(BuildBundleTest, aStopEndsItAtTheNextLoad) {
    std::stop_source source;
    fixture.asset->beforeLoad = [&source](const std::string& name) {
        if (name == "audio tracks")
            source.request_stop();
    };
    EXPECT_THROW(build({{"a", 1.0, 2.0}}, source.get_token()), CancellationError);
    EXPECT_EQ(fixture.asset->loads, (std::vector<std::string>{"video tracks", "audio tracks"}));
}

}  // namespace
}  // namespace korvane
