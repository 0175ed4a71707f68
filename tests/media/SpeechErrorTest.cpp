#include "media/SpeechError.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

TEST(SpeechError, eachCaseSaysItsSentence) {
    EXPECT_STREQ(SpeechError::recognizerUnavailable(Locale{"en-US"}).what(),
                 "Speech recognizer is not available for 'en-US'.");
    EXPECT_STREQ(SpeechError::permissionDenied().what(),
                 "Speech recognition permission was denied. Enable it in System Settings › Privacy.");
    EXPECT_STREQ(SpeechError::permissionRestricted().what(),
                 "Speech recognition is restricted on this device.");
}

TEST(SpeechError, twoAreEqualWhenCaseAndLocaleAre) {
    EXPECT_EQ(SpeechError::permissionDenied(), SpeechError::permissionDenied());
    EXPECT_FALSE(SpeechError::permissionDenied() == SpeechError::permissionRestricted());
    EXPECT_EQ(SpeechError::recognizerUnavailable(Locale{"a"}),
              SpeechError::recognizerUnavailable(Locale{"a"}));
    EXPECT_FALSE(SpeechError::recognizerUnavailable(Locale{"a"}) ==
                 SpeechError::recognizerUnavailable(Locale{"b"}));
    EXPECT_EQ(SpeechError::recognizerUnavailable(Locale{"ja-JP"}).locale(), Locale{"ja-JP"});
}

TEST(SpeechError, theCasesStandInTheirOrder) {
    EXPECT_LT(SpeechError::Case::recognizerUnavailable, SpeechError::Case::permissionDenied);
    EXPECT_LT(SpeechError::Case::permissionDenied, SpeechError::Case::permissionRestricted);
}

}  // namespace
}  // namespace korvane
