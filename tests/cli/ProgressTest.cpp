#include "cli/Progress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace korvane::cli;

namespace {

// The state after which `remaining` seconds are left when half is done.
ProgressState half(double remaining) {
    return {Phase::transcribing, 0.5, remaining};
}

long columnsOf(const std::string& text) {
    return std::count_if(text.begin(), text.end(),
                         [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
}

}  // namespace

TEST(Progress, theTimeLeftIsRoundedDownAndWordedBySize) {
    EXPECT_EQ(etaText(half(4.9)), "Almost done…");
    EXPECT_EQ(etaText(half(5.0)), "~5s left");
    EXPECT_EQ(etaText(half(42.7)), "~42s left");
    EXPECT_EQ(etaText(half(59.9)), "~59s left");
    EXPECT_EQ(etaText(half(60.0)), "~1m 0s left");
    EXPECT_EQ(etaText(half(187.0)), "~3m 7s left");
    EXPECT_EQ(etaText(half(7260.0)), "~121m 0s left");
}

TEST(Progress, thereIsNoEstimateInTheFirstFivePercent) {
    EXPECT_FALSE(etaText({Phase::exportingVideo, 0.05, 10.0}));
    EXPECT_FALSE(etaText({Phase::exportingVideo, 0.0, 10.0}));
    EXPECT_FALSE(etaText({Phase::exportingVideo, std::numeric_limits<double>::quiet_NaN(), 10.0}));
    EXPECT_TRUE(etaText({Phase::exportingVideo, 0.0501, 10.0}));
    EXPECT_FALSE(etaText({Phase::extractingAudio, 0.29, 1.0}));
    EXPECT_FALSE(etaText({Phase::transcribing, 0.34, 1.0}));
    EXPECT_TRUE(etaText({Phase::transcribing, 0.36, 1.0}));
}

TEST(Progress, extractionFillsThirtyPercentAndTranscriptionTheRest) {
    EXPECT_DOUBLE_EQ(overallProgress(Phase::extractingAudio, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(overallProgress(Phase::extractingAudio, 1.0), 0.3);
    EXPECT_DOUBLE_EQ(overallProgress(Phase::transcribing, 0.0), 0.3);
    EXPECT_DOUBLE_EQ(overallProgress(Phase::transcribing, 1.0), 1.0);
    EXPECT_DOUBLE_EQ(overallProgress(Phase::exportingVideo, 0.5), 0.5);
}

TEST(Progress, aDownloadFillsItsOwnHundredPercentAndBringsItsOwnTime) {
    EXPECT_DOUBLE_EQ(overallProgress(Phase::downloadingModel, 0.5), 0.5);
    EXPECT_DOUBLE_EQ(overallProgress(Phase::copyingModel, 0.1), 0.1);
    const ProgressState state{Phase::downloadingModel, 0.5, 10.0, "4.2 MB/s  42 s left"};
    EXPECT_EQ(progressLine(state, 79), "Downloading  [############............] 50%  4.2 MB/s  42 s left");
    EXPECT_EQ(progressLine(state, 40), "Downloading  50%  4.2 MB/s  42 s left");
    EXPECT_EQ(plainProgressLine(state), "Downloading: 50%");
}

TEST(Progress, thePercentageIsTruncated) {
    EXPECT_EQ(percent({Phase::exportingVideo, 0.999, 0.0}), 99);
    EXPECT_EQ(percent({Phase::exportingVideo, 1.0, 0.0}), 100);
    EXPECT_EQ(percent({Phase::exportingVideo, 1.5, 0.0}), 100);
}

TEST(Progress, theLineShowsPhaseBarPercentageAndTime) {
    EXPECT_EQ(progressLine(half(42.7), 79), "Transcribing  [############............] 50%  ~42s left");
    EXPECT_EQ(progressLine({Phase::extractingAudio, 0.0, 0.0}, 79),
              "Extracting audio  [........................]  0%");
    EXPECT_EQ(progressLine({Phase::exportingVideo, 1.0, 9.0}, 79),
              "Exporting video  [########################]100%");
}

TEST(Progress, theLineNeverExceedsItsColumns) {
    for (const double overall : {0.0, 0.04, 0.3, 0.5, 0.99, 1.0})
        for (const double elapsed : {0.0, 1.0, 59.0, 3600.0, 360000.0})
            for (int columns = 0; columns < 120; ++columns)
                EXPECT_LE(columnsOf(progressLine({Phase::extractingAudio, overall, elapsed}, columns)),
                          columns);
}

TEST(Progress, aNarrowTerminalLosesTheBarFirstThenTheTime) {
    EXPECT_EQ(progressLine(half(42.7), 40), "Transcribing  50%  ~42s left");
    EXPECT_EQ(progressLine(half(42.7), 20), "Transcribing  50%");
    EXPECT_EQ(progressLine(half(42.7), 5), "50%");
    EXPECT_EQ(progressLine(half(42.7), 2), "");
}

TEST(Progress, logsGetALineForEachPhaseAndEachTenth) {
    PlainProgressThinning thinning;
    int lines = 0;
    for (int i = 0; i <= 1000; ++i)
        lines += thinning.worthALine({Phase::exportingVideo, i / 1000.0, 0.0}) ? 1 : 0;
    EXPECT_EQ(lines, 11);
    EXPECT_TRUE(thinning.worthALine({Phase::transcribing, 0.3, 0.0}));
    EXPECT_FALSE(thinning.worthALine({Phase::transcribing, 0.35, 0.0}));
    thinning.restart();
    EXPECT_TRUE(thinning.worthALine({Phase::transcribing, 0.0, 0.0}));
    EXPECT_EQ(plainProgressLine({Phase::transcribing, 0.305, 0.0}), "Transcribing: 30%");
}
