#include "platform/layers/EastAsianText.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

std::string languageOf(std::initializer_list<const char*> texts) {
    EastAsianText found;
    for (const char* text : texts)
        found.add(text);
    return found.language();
}

TEST(EastAsianText, charactersAloneCountAsChinese) {
    EXPECT_EQ(languageOf({}), "zh-cn");
    EXPECT_EQ(languageOf({"words", "東京"}), "zh-cn");
}

TEST(EastAsianText, kanaAnywhereMakeAllOfItJapanese) {
    EXPECT_EQ(languageOf({"東京", "です"}), "ja");
    EXPECT_EQ(languageOf({"カメラ", "東京"}), "ja");
    EXPECT_EQ(languageOf({"한국", "です"}), "ja");
}

TEST(EastAsianText, hangulAnywhereMakesItKorean) {
    EXPECT_EQ(languageOf({"東京", "한국"}), "ko");
}

}  // namespace
}  // namespace korvane
