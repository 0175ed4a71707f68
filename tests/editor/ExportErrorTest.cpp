#include "editor/ExportError.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

TEST(ExportError, everyCaseHasItsSentence) {
    EXPECT_STREQ(ExportError::exportFailed("no space").what(), "Export failed: no space");
    EXPECT_STREQ(ExportError::noSegmentsSelected().what(), "No segments are selected.");
    EXPECT_STREQ(ExportError::noVideoTrack().what(), "The source video has no video track.");
    EXPECT_STREQ(ExportError::compositionFailed().what(), "Failed to create the composition track.");
    EXPECT_STREQ(ExportError::noContentInserted().what(),
                 "None of the selected segments produced valid content.");
}

TEST(ExportError, twoAreEqualWhenCaseAndMessageAre) {
    EXPECT_EQ(ExportError::exportFailed("a"), ExportError::exportFailed("a"));
    EXPECT_FALSE(ExportError::exportFailed("a") == ExportError::exportFailed("b"));
    EXPECT_FALSE(ExportError::exportFailed("") == ExportError::noVideoTrack());
    EXPECT_EQ(ExportError::exportFailed("a").message(), "a");
    EXPECT_EQ(ExportError::noVideoTrack().errorCase(), ExportError::Case::noVideoTrack);
}

}  // namespace
}  // namespace korvane
