#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "editor/ExportError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/editor/EditorFixture.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

TimeRange range(std::int64_t start, std::int64_t duration) {
    return {MediaTime(start, 600), MediaTime(duration, 600)};
}

/// One placed range of a track, for comparison.
struct Piece {
    TimeRange source;
    TimeRange target;
    friend bool operator==(const Piece&, const Piece&) = default;
};

std::vector<Piece> piecesOf(const CompositionTrack& track) {
    std::vector<Piece> pieces;
    for (const TrackSegment& segment : track.segments())
        pieces.push_back({segment.source, segment.target});
    return pieces;
}

struct SegmentCompositionBuilderTest : testing::Test {
    EditorFixture fixture;

    std::vector<Piece> video(const CompositionData& data) {
        return piecesOf(*data.composition->tracks(MediaType::video).at(0));
    }
    std::vector<Piece> audio(const CompositionData& data, std::size_t index = 0) {
        return piecesOf(*data.composition->tracks(MediaType::audio).at(index));
    }
    bool logged(const std::string& line) const {
        return std::find(fixture.log.begin(), fixture.log.end(), line) != fixture.log.end();
    }
};

TEST_F(SegmentCompositionBuilderTest, twoWordsAreJoinedBehindTheLeadIn) {
    const CompositionData data = fixture.build({{"So", 1.0, 1.4}, {"then", 2.0, 2.5}});
    const std::vector<Piece> expected{{range(450, 150), range(0, 150)},
                                      {range(600, 240), range(150, 240)},
                                      {range(1200, 300), range(390, 300)}};
    EXPECT_EQ(video(data), expected);
    EXPECT_EQ(audio(data), expected);
    EXPECT_EQ(data.subtitleEntries, (std::vector<SubtitleEntry>{{0.25, 0.65, "So"}, {0.65, 1.15, "then"}}));
    EXPECT_EQ(data.prerollDuration, MediaTime(150, 600));
    EXPECT_EQ(data.composition->duration(), MediaTime(690, 600));
    EXPECT_EQ(data.videoComposition.instructions.at(0).timeRange, range(0, 690));
    EXPECT_EQ(data.videoComposition.instructions.at(0).layerInstructions.at(0).trackID,
              data.composition->tracks(MediaType::video).at(0)->trackID());
}

TEST_F(SegmentCompositionBuilderTest, aNormalBuildLogsEveryStep) {
    fixture.build({{"So", 1.0, 1.4}, {"then", 2.0, 2.5}});
    EXPECT_EQ(text(fixture.log),
              text({
                  "🎬 [Build] Loading video tracks…",
                  "🎬 [Build] videoTracks.count = 1",
                  "🎬 [Build] audioTracks.count = 1",
                  "🎬 [Build] assetDuration = 10.0s",
                  "🎬 [Build] naturalSize=(1920.0, 1080.0)  nominalFrameRate=30.0",
                  "🎬 [Build] preferredTransform=[1.0, 0.0, 0.0, 1.0, 0.0, 0.0]",
                  "🎬 [Build] pre-roll inserted: 0.25s before first word",
                  "🎬 [Build] inserted 2/2 segments, total duration=1.15s",
                  "🎬 [VC] displaySize=(1920.0,1080.0) scale=1.7777777777777777 tx=-1166.6666666666665 ty=0.0",
                  "🎬 [VC] renderSize=(1080.0, 1920.0) frameDuration=0.03333333333333333s",
              }));
    EXPECT_EQ(fixture.asset->loads, (Lines{"video tracks", "audio tracks", "duration"}));
}

TEST_F(SegmentCompositionBuilderTest, everyRecoverableFailureIsLoggedInPlace) {
    fixture.asset->audioTracks = {FakeAsset::audioTrack(1), FakeAsset::audioTrack(2)};
    fixture.troubles.failingInserts = {{1, {1, 3}}, {2, {1, 2}}, {3, {3}}};
    const CompositionData data =
        fixture.build({{"one", 1.0, 1.5}, {"two", 2.0, 2.5}, {"none", 12.0, 13.0}, {"three", 3.0, 3.5}});
    EXPECT_EQ(text(Lines(fixture.log.begin() + 6, fixture.log.end() - 2)),
              text({
                  "🎬 [Build] pre-roll video insert failed: insert 1 was refused",
                  "🎬 [Build] pre-roll audio insert failed: insert 1 was refused",
                  "🎬 [Build] pre-roll inserted: 0.25s before first word",
                  "🎬 [Build] seg[0] 'one' — audio insert ERROR: insert 2 was refused",
                  "🎬 [Build] seg[1] 'two' — video insert ERROR: insert 3 was refused",
                  "🎬 [Build] seg[2] 'none' — SKIPPED (zero duration 10.0–10.0)",
                  "🎬 [Build] seg[3] 'three' — audio insert ERROR: insert 3 was refused",
                  "🎬 [Build] inserted 2/4 segments, total duration=1.25s",
              }));
    // The lead-in keeps its place without its picture; "two" leaves no trace, not even sound.
    EXPECT_EQ(video(data),
              (std::vector<Piece>{{range(600, 300), range(150, 300)}, {range(1800, 300), range(450, 300)}}));
    EXPECT_EQ(audio(data, 0), (std::vector<Piece>{{range(1800, 300), range(450, 300)}}));
    EXPECT_EQ(audio(data, 1),
              (std::vector<Piece>{{range(450, 150), range(0, 150)}, {range(600, 300), range(150, 300)}}));
    EXPECT_EQ(data.subtitleEntries, (std::vector<SubtitleEntry>{{0.25, 0.75, "one"}, {0.75, 1.25, "three"}}));
}

TEST_F(SegmentCompositionBuilderTest, theLeadInIsAtMostAQuarterSecondAndNeverBeforeTheVideo) {
    const struct {
        double firstStart;
        TimeRange source;
    } cases[] = {{0.10, range(0, 60)}, {3.0, range(1650, 150)}, {0.25, range(0, 150)}};
    for (const auto& [firstStart, source] : cases) {
        const CompositionData data = fixture.build({{"w", firstStart, firstStart + 1.0}});
        EXPECT_EQ(video(data).at(0), (Piece{source, {kZeroTime, source.duration}})) << firstStart;
        EXPECT_EQ(data.prerollDuration, source.duration) << firstStart;
    }
}

TEST_F(SegmentCompositionBuilderTest, aFirstWordAtTheBeginningHasNoLeadIn) {
    for (const double firstStart : {0.0, -2.0}) {
        const CompositionData data = fixture.build({{"w", firstStart, 1.0}});
        EXPECT_EQ(data.prerollDuration, kZeroTime);
        EXPECT_EQ(video(data), (std::vector<Piece>{{range(0, 600), range(0, 600)}}));
        EXPECT_EQ(data.subtitleEntries.at(0), (SubtitleEntry{0.0, 1.0, "w"}));
    }
}

TEST_F(SegmentCompositionBuilderTest, theLeadInBelongsToTheFirstWordOfTheArrayNotTheEarliest) {
    const CompositionData data = fixture.build({{"later", 5.0, 5.5}, {"sooner", 1.0, 1.5}});
    EXPECT_EQ(video(data), (std::vector<Piece>{{range(2850, 150), range(0, 150)},
                                               {range(3000, 300), range(150, 300)},
                                               {range(600, 300), range(450, 300)}}));
}

TEST_F(SegmentCompositionBuilderTest, aWordReachingPastTheEndIsCutThere) {
    const CompositionData data = fixture.build({{"end", 9.5, 11.0}});
    EXPECT_EQ(video(data).at(1), (Piece{range(5700, 300), range(150, 300)}));
}

TEST_F(SegmentCompositionBuilderTest, wordsWithoutLengthAreSkippedAndLogged) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        SpeechSegment word;
        const char* times;
    } cases[] = {
        {{"w", 10.0, 11.0}, "10.0–10.0"},   {{"w", 12.0, 13.0}, "10.0–10.0"},
        {{"w", 3.0, 3.0}, "3.0–3.0"},       {{"w", 3.0, 2.0}, "3.0–2.0"},
        {{"w", 3.0, 3.0008}, "3.0–3.0008"}, {{"w", -2.0, -1.0}, "0.0–0.0"},
        {{"w", nan, 2.0}, "nan–2.0"},       {{"w", 1.0, nan}, "1.0–nan"},
        {{"w", nan, nan}, "nan–nan"},       {{"w", infinity, infinity}, "10.0–10.0"},
        {{"w", 1e300, -1e300}, "10.0–0.0"},
    };
    for (const auto& [word, times] : cases) {
        fixture.log.clear();
        const CompositionData data = fixture.build({{"kept", 1.0, 2.0}, word});
        EXPECT_TRUE(logged(std::string("🎬 [Build] seg[1] 'w' — SKIPPED (zero duration ") + times + ")"))
            << times;
        EXPECT_TRUE(logged("🎬 [Build] inserted 1/2 segments, total duration=1.25s")) << times;
        EXPECT_EQ(data.subtitleEntries.size(), 1U) << times;
    }
}

TEST_F(SegmentCompositionBuilderTest, theShortestWordThatCountsIsOneUnit) {
    const CompositionData data = fixture.build({{"kept", 0.0, 1.0}, {"tiny", 3.0, 3.0009}});
    EXPECT_EQ(video(data).at(1), (Piece{range(1800, 1), range(600, 1)}));
}

TEST_F(SegmentCompositionBuilderTest, aWordsLengthIsTheDifferenceOfItsRoundedTimes) {
    // 600.24 and 1200.72 units round to 600 and 1201; their difference alone would round to 600.
    const CompositionData data = fixture.build({{"kept", 0.0, 1.0}, {"w", 1.0004, 2.0012}});
    EXPECT_EQ(video(data).at(1), (Piece{range(600, 601), range(600, 601)}));
}

TEST_F(SegmentCompositionBuilderTest, hugeTimesAreHeldToTheVideo) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(video(fixture.build({{"all", -infinity, infinity}})),
              (std::vector<Piece>{{range(0, 6000), range(0, 6000)}}));
    EXPECT_EQ(video(fixture.build({{"all", -1e300, 1e300}})),
              (std::vector<Piece>{{range(0, 6000), range(0, 6000)}}));
}

TEST_F(SegmentCompositionBuilderTest, aFirstWordWhoseStartIsNoNumberMakesNoLeadIn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const CompositionData data = fixture.build({{"broken", nan, 1.0}, {"kept", 2.0, 3.0}});
    EXPECT_EQ(data.prerollDuration, kZeroTime);
    EXPECT_EQ(video(data), (std::vector<Piece>{{range(1200, 600), range(0, 600)}}));
}

TEST_F(SegmentCompositionBuilderTest, whenEveryWordIsSkippedTheLeadInStaysAlone) {
    const CompositionData data = fixture.build({{"none", 3.0, 3.0}, {"no", 4.0, 3.0}});
    EXPECT_EQ(data.composition->duration(), MediaTime(150, 600));
    EXPECT_EQ(video(data), (std::vector<Piece>{{range(1650, 150), range(0, 150)}}));
    EXPECT_TRUE(data.subtitleEntries.empty());
    EXPECT_TRUE(data.audioMix.has_value());
}

TEST_F(SegmentCompositionBuilderTest, nothingInsertedWithoutALeadInIsAnError) {
    for (const std::vector<SpeechSegment>& words :
         {std::vector<SpeechSegment>{}, std::vector<SpeechSegment>{{"none", 0.0, 0.0}}}) {
        try {
            fixture.build(words);
            FAIL() << "nothing was thrown";
        } catch (const ExportError& error) {
            EXPECT_EQ(error, ExportError::noContentInserted());
        }
    }
    EXPECT_EQ(fixture.log.back(), "🎬 [Build] inserted 0/1 segments, total duration=0.0s");
}

TEST_F(SegmentCompositionBuilderTest, aSourceWithoutPictureIsAnErrorAfterTheCountIsLogged) {
    fixture.asset->videoTracks.clear();
    EXPECT_THROW(fixture.build({{"w", 0.0, 1.0}}), ExportError);
    EXPECT_EQ(text(fixture.log),
              text({"🎬 [Build] Loading video tracks…", "🎬 [Build] videoTracks.count = 0"}));
    EXPECT_EQ(fixture.asset->loads, (Lines{"video tracks"}));
}

TEST_F(SegmentCompositionBuilderTest, aMissingVideoTrackOfTheCompositionIsAnError) {
    fixture.troubles.missingTracks = {1};
    try {
        fixture.build({{"w", 0.0, 1.0}});
        FAIL() << "nothing was thrown";
    } catch (const ExportError& error) {
        EXPECT_EQ(error, ExportError::compositionFailed());
    }
}

TEST_F(SegmentCompositionBuilderTest, aMissingAudioTrackOfTheCompositionIsLeftOutWithoutAMessage) {
    fixture.asset->audioTracks = {FakeAsset::audioTrack(1), FakeAsset::audioTrack(2)};
    fixture.troubles.missingTracks = {2};
    const CompositionData data = fixture.build({{"a", 1.0, 1.5}, {"b", 2.0, 2.5}});
    const auto tracks = data.composition->tracks(MediaType::audio);
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_EQ(tracks[0]->segments().at(0).track.streamIndex, 2);
    EXPECT_EQ(data.audioMix->inputParameters.size(), 1U);
    EXPECT_TRUE(logged("🎬 [Build] inserted 2/2 segments, total duration=1.25s"));
    EXPECT_EQ(fixture.log.size(), 10U);
}

TEST_F(SegmentCompositionBuilderTest, onlyTheFirstVideoTrackIsUsed) {
    fixture.asset->videoTracks = {FakeAsset::videoTrack({1080.0, 1920.0}, 25.0F),
                                  FakeAsset::videoTrack({640.0, 480.0}, 50.0F)};
    const CompositionData data = fixture.build({{"w", 1.0, 2.0}});
    EXPECT_EQ(data.composition->tracks(MediaType::video).size(), 1U);
    EXPECT_EQ(data.videoComposition.frameDuration.timescale(), 25);
    EXPECT_TRUE(logged("🎬 [Build] videoTracks.count = 2"));
}

TEST_F(SegmentCompositionBuilderTest, aSilentSourceHasNoAudioMix) {
    fixture.asset->audioTracks.clear();
    const CompositionData data = fixture.build({{"a", 1.0, 1.5}, {"b", 2.0, 2.5}});
    EXPECT_FALSE(data.audioMix.has_value());
    EXPECT_TRUE(data.composition->tracks(MediaType::audio).empty());
}

TEST_F(SegmentCompositionBuilderTest, oneWordWithoutLeadInHasNoAudioMix) {
    EXPECT_FALSE(fixture.build({{"a", 0.0, 1.5}}).audioMix.has_value());
}

TEST_F(SegmentCompositionBuilderTest, twoAudioTracksCarryTheSameRamps) {
    fixture.asset->audioTracks = {FakeAsset::audioTrack(1), FakeAsset::audioTrack(4)};
    const CompositionData data = fixture.build({{"a", 1.0, 1.03}, {"b", 2.0, 2.5}});
    const auto tracks = data.composition->tracks(MediaType::audio);
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[1]->segments().at(0).track.streamIndex, 4);
    ASSERT_TRUE(data.audioMix.has_value());
    ASSERT_EQ(data.audioMix->inputParameters.size(), 2U);
    // The lead-in's fade, then the dip: half of 0.03 s to each side of the cut at 0.28 s.
    const std::vector<VolumeRamp> ramps{
        {0.0, 1.0, range(0, 150)}, {1.0, 0.0, range(159, 9)}, {0.0, 1.0, range(168, 9)}};
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(data.audioMix->inputParameters[i].trackID, tracks[i]->trackID());
        EXPECT_EQ(data.audioMix->inputParameters[i].ramps, ramps);
    }
}

TEST_F(SegmentCompositionBuilderTest, errorsOfTheSourcePassThroughUnchanged) {
    for (const std::string load : {"video tracks", "audio tracks", "duration"}) {
        fixture.asset->beforeLoad = [&load](const std::string& name) {
            if (name == load)
                throw MediaError("can't read " + name);
        };
        try {
            fixture.build({{"w", 0.0, 1.0}});
            FAIL() << "nothing was thrown";
        } catch (const MediaError& error) {
            EXPECT_EQ(error.what(), "can't read " + load);
        }
    }
}

TEST_F(SegmentCompositionBuilderTest, aStopEndsTheBuildAtTheNextLoad) {
    std::stop_source source;
    fixture.asset->beforeLoad = [&source](const std::string& name) {
        if (name == "video tracks")
            source.request_stop();
    };
    EXPECT_THROW(fixture.build({{"w", 0.0, 1.0}}, source.get_token()), CancellationError);
    EXPECT_EQ(fixture.asset->loads, (Lines{"video tracks"}));
}

TEST_F(SegmentCompositionBuilderTest, anyWordsMakeOneUnbrokenTimeline) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> time(-1.0, 12.0);
    std::uniform_real_distribution<double> length(-0.1, 0.8);
    for (int round = 0; round < 200; ++round) {
        std::vector<SpeechSegment> words;
        for (int i = 0; i < 40; ++i) {
            const double start = time(random);
            words.emplace_back(std::to_string(i), start, start + length(random));
        }
        const CompositionData data = fixture.build(words);

        double expectedStart = data.prerollDuration.seconds();
        for (const SubtitleEntry& entry : data.subtitleEntries) {
            ASSERT_EQ(entry.start, expectedStart);
            ASSERT_GT(entry.end, entry.start);
            expectedStart = entry.end;
        }

        MediaTime sum = data.prerollDuration;
        const auto pieces = video(data);
        const std::size_t leadIns = data.prerollDuration > kZeroTime ? 1 : 0;
        ASSERT_EQ(pieces.size(), data.subtitleEntries.size() + leadIns);
        for (std::size_t i = leadIns; i < pieces.size(); ++i) {
            ASSERT_EQ(pieces[i].target, (TimeRange{sum, pieces[i].source.duration}));
            ASSERT_GE(pieces[i].source.start, kZeroTime);
            ASSERT_LE(pieces[i].source.end(), fixture.asset->duration);
            sum = sum + pieces[i].source.duration;
        }
        ASSERT_EQ(data.composition->duration(), sum);
        ASSERT_EQ(expectedStart, sum.seconds());
        ASSERT_EQ(audio(data), pieces);

        MediaTime rampsEnd = kZeroTime;
        for (const VolumeRamp& ramp : data.audioMix->inputParameters.at(0).ramps) {
            ASSERT_GE(ramp.range.start, rampsEnd);
            rampsEnd = ramp.range.end();
        }
        ASSERT_LE(rampsEnd, sum);
    }
}

using SegmentCompositionBuilderDeathTest = SegmentCompositionBuilderTest;

TEST_F(SegmentCompositionBuilderDeathTest, aNegativeDurationStopsTheProgram) {
    fixture.asset->duration = MediaTime(-1, 600);
    EXPECT_DEATH(fixture.build({{"w", 0.0, 1.0}}), "Fatal error: Range requires lowerBound <= upperBound");
}

}  // namespace
}  // namespace korvane
