#include "platform/av/Composition.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

AssetTrack sourceTrack(MediaType type) {
    AssetTrack track;
    track.path = "talk.mp4";
    track.mediaType = type;
    track.timeRange = {kZeroTime, MediaTime(6000, 600)};
    return track;
}

TimeRange range(std::int64_t start, std::int64_t duration) {
    return {MediaTime(start, 600), MediaTime(duration, 600)};
}

TEST(Composition, anEmptyOneHasNoTracksAndNoDuration) {
    const Composition composition;
    EXPECT_TRUE(composition.tracks().empty());
    EXPECT_EQ(composition.duration(), kZeroTime);
}

TEST(Composition, trackIdentifiersCountFromOneInOrderOfAdding) {
    Composition composition;
    EXPECT_EQ(composition.addMutableTrack(MediaType::video)->trackID(), 1);
    EXPECT_EQ(composition.addMutableTrack(MediaType::audio)->trackID(), 2);
    EXPECT_EQ(composition.addMutableTrack(MediaType::audio)->trackID(), 3);
    ASSERT_EQ(composition.tracks(MediaType::audio).size(), 2U);
    EXPECT_EQ(composition.tracks(MediaType::audio)[1]->trackID(), 3);
    ASSERT_EQ(composition.tracks(MediaType::video).size(), 1U);
    EXPECT_EQ(composition.tracks().size(), 3U);
}

TEST(Composition, insertedRangesKeepTheirLengthAndStandWhereTheyWerePut) {
    Composition composition;
    CompositionTrack* track = composition.addMutableTrack(MediaType::video);
    track->insertTimeRange(range(600, 90), sourceTrack(MediaType::video), kZeroTime);
    track->insertTimeRange(range(60, 30), sourceTrack(MediaType::video), MediaTime(90, 600));
    ASSERT_EQ(track->segments().size(), 2U);
    EXPECT_EQ(track->segments()[0].source, range(600, 90));
    EXPECT_EQ(track->segments()[0].target, range(0, 90));
    EXPECT_EQ(track->segments()[1].source, range(60, 30));
    EXPECT_EQ(track->segments()[1].target, range(90, 30));
    EXPECT_EQ(track->segments()[1].track.path, "talk.mp4");
    EXPECT_EQ(track->timeRange(), range(0, 120));
}

TEST(Composition, aGapBeforeARangeCountsInTheDuration) {
    Composition composition;
    CompositionTrack* track = composition.addMutableTrack(MediaType::audio);
    track->insertTimeRange(range(0, 60), sourceTrack(MediaType::audio), MediaTime(150, 600));
    EXPECT_EQ(track->timeRange(), range(0, 210));
}

TEST(Composition, lastsAsLongAsItsLongestTrack) {
    Composition composition;
    composition.addMutableTrack(MediaType::video)
        ->insertTimeRange(range(0, 60), sourceTrack(MediaType::video), kZeroTime);
    composition.addMutableTrack(MediaType::audio)
        ->insertTimeRange(range(0, 61), sourceTrack(MediaType::audio), kZeroTime);
    EXPECT_EQ(composition.duration(), MediaTime(61, 600));
}

struct RefusedInsert {
    const char* name;
    TimeRange source;
    MediaType mediaType;
    MediaTime at;
};

class CompositionRefuses : public testing::TestWithParam<RefusedInsert> {};

TEST_P(CompositionRefuses, andLeavesTheTrackAsItWas) {
    Composition composition;
    CompositionTrack* track = composition.addMutableTrack(MediaType::video);
    track->insertTimeRange(range(0, 60), sourceTrack(MediaType::video), kZeroTime);
    const RefusedInsert& insert = GetParam();
    EXPECT_THROW(track->insertTimeRange(insert.source, sourceTrack(insert.mediaType), insert.at), MediaError);
    EXPECT_EQ(track->segments().size(), 1U);
    EXPECT_EQ(track->timeRange(), range(0, 60));
}

INSTANTIATE_TEST_SUITE_P(
    Inserts, CompositionRefuses,
    testing::Values(RefusedInsert{"anEmptyRange", range(10, 0), MediaType::video, MediaTime(60, 600)},
                    RefusedInsert{"aNegativeLength", range(10, -1), MediaType::video, MediaTime(60, 600)},
                    RefusedInsert{"aStartBeforeZero", range(-1, 10), MediaType::video, MediaTime(60, 600)},
                    RefusedInsert{"anotherMediaType", range(0, 10), MediaType::audio, MediaTime(60, 600)},
                    RefusedInsert{"aPlaceThatIsTaken", range(0, 10), MediaType::video, MediaTime(59, 600)},
                    RefusedInsert{"aPlaceBeforeZero", range(0, 10), MediaType::video, MediaTime(-1, 600)}),
    [](const auto& parameter) { return parameter.param.name; });

TEST(Composition, aRangeBeyondAllTimeIsRefusedAndLeavesTheTrackAsItWas) {
    Composition composition;
    CompositionTrack* track = composition.addMutableTrack(MediaType::video);
    const std::int64_t huge = std::numeric_limits<std::int64_t>::max();
    EXPECT_THROW(track->insertTimeRange(range(huge, huge), sourceTrack(MediaType::video), kZeroTime),
                 TimeOverflowError);
    EXPECT_TRUE(track->segments().empty());
}

}  // namespace
}  // namespace korvane
