#include "platform/fonts/FontName.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

TEST(FontName, tellsWeightAndSlantBehindItsHyphen) {
    struct Case {
        const char* name;
        const char* base;
        int weight;
        bool italic;
    };
    for (const auto& [name, base, weight, italic] :
         {Case{"HelveticaNeue-Bold", "helveticaneue", 700, false},
          Case{"HelveticaNeue", "helveticaneue", 400, false}, Case{"Arial-BoldItalicMT", "arial", 700, true},
          Case{"ArialMT", "arialmt", 400, false}, Case{"Avenir-BookOblique", "avenir", 400, true},
          Case{"Inter-ExtraBold", "inter", 800, false}, Case{"Inter-SemiBold", "inter", 600, false},
          Case{"Some-UltraLightItalic", "some", 200, true},
          Case{"HelveticaNeue-Thin", "helveticaneue", 100, false},
          Case{"Futura-Medium", "futura", 500, false}, Case{"Arial-Black", "arial", 900, false},
          Case{"Noto-Sans-Light", "notosans", 300, false}, Case{"", "", 400, false},
          Case{"-", "", 400, false}}) {
        const auto traits = traitsOfPostScriptName(name);
        EXPECT_EQ(traits.base, base) << name;
        EXPECT_EQ(traits.weight, weight) << name;
        EXPECT_EQ(traits.italic, italic) << name;
    }
}

TEST(FontName, tellsItsGenre) {
    EXPECT_EQ(traitsOfPostScriptName("TimesNewRomanPS-BoldMT").genre, FontGenre::serif);
    EXPECT_EQ(traitsOfPostScriptName("PTSans-Bold").genre, FontGenre::sans);
    EXPECT_EQ(traitsOfPostScriptName("NotoSansSerif").genre, FontGenre::sans);
    EXPECT_EQ(traitsOfPostScriptName("Menlo-Regular").genre, FontGenre::monospace);
    EXPECT_EQ(traitsOfPostScriptName("HelveticaNeue-Bold").genre, FontGenre::sans);
}

}  // namespace
}  // namespace korvane
