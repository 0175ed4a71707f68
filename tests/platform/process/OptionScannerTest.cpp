#include "platform/process/OptionScanner.h"

#include <gtest/gtest.h>

#include "platform/process/UsageError.h"

using namespace korvane;

namespace {

using Strings = std::vector<std::string>;
using Value = OptionRule::Value;

const std::vector<OptionRule> rules{
    {'q', "quiet", Value::none}, {'l', "language", Value::one}, {'o', "output", Value::one},
    {0, "style", Value::one},    {'s', "select", Value::many},  {0, "seldom", Value::none},
};

ScannedArguments scan(const Strings& arguments) {
    return scanArguments(arguments, rules);
}

std::string refusal(const Strings& arguments) {
    try {
        scan(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(OptionScanner, everySpellingOfAValueIsRead) {
    for (const Strings& arguments :
         {Strings{"-l", "en-US"}, Strings{"-len-US"}, Strings{"-l=en-US"}, Strings{"--language", "en-US"},
          Strings{"--language=en-US"}, Strings{"--lang", "en-US"}, Strings{"--la=en-US"}})
        EXPECT_EQ(scan(arguments).value("language"), "en-US") << arguments.front();
}

TEST(OptionScanner, optionsAndOperandsMayMix) {
    const auto scanned = scan({"a.mp4", "-q", "b", "-o", "out", "c"});
    EXPECT_EQ(scanned.operands, (Strings{"a.mp4", "b", "c"}));
    EXPECT_TRUE(scanned.has("quiet"));
    EXPECT_EQ(scanned.value("output"), "out");
}

TEST(OptionScanner, shortOptionsMayStandTogether) {
    const auto scanned = scan({"-qo", "out"});
    EXPECT_TRUE(scanned.has("quiet"));
    EXPECT_EQ(scanned.value("output"), "out");
}

TEST(OptionScanner, twoDashesEndTheOptions) {
    EXPECT_EQ(scan({"--", "-q", "--output"}).operands, (Strings{"-q", "--output"}));
}

TEST(OptionScanner, aLoneDashIsAnOperandOrAValue) {
    EXPECT_EQ(scan({"-"}).operands, Strings{"-"});
    EXPECT_EQ(scan({"-o", "-"}).value("output"), "-");
}

TEST(OptionScanner, aListMayBeginWithADashAndComeAgain) {
    const auto scanned = scan({"--select", "-3", "-s", "5", "--select=-7"});
    EXPECT_EQ(scanned.options.at("select"), (Strings{"-3", "5", "-7"}));
}

TEST(OptionScanner, aValueMayHoldAnEqualsSign) {
    EXPECT_EQ(scan({"--output=a=b"}).value("output"), "a=b");
}

TEST(OptionScanner, whatCanNotBeMeantIsRefused) {
    EXPECT_EQ(refusal({"--nothing"}), "There is no option --nothing here.");
    EXPECT_EQ(refusal({"-x"}), "There is no option -x here.");
    EXPECT_EQ(refusal({"-qx"}), "There is no option -x here.");
    EXPECT_EQ(refusal({"--sel"}), "--sel may mean --select or --seldom.");
    EXPECT_EQ(refusal({"--output"}), "--output needs a value.");
    EXPECT_EQ(refusal({"-o"}), "-o needs a value.");
    EXPECT_EQ(refusal({"--output="}), "--output needs a value.");
    EXPECT_EQ(refusal({"--output", ""}), "--output needs a value.");
    EXPECT_EQ(refusal({"--output", "--quiet"}),
              "--output needs a value, and \"--quiet\" looks like an option.");
    EXPECT_EQ(refusal({"-o", "-q"}), "-o needs a value, and \"-q\" looks like an option.");
    EXPECT_EQ(refusal({"--select", "--quiet"}),
              "--select needs a value, and \"--quiet\" looks like an option.");
    EXPECT_EQ(refusal({"--quiet=yes"}), "--quiet takes no value.");
    EXPECT_EQ(refusal({"-o", "a", "--output", "b"}), "--output was given twice.");
    EXPECT_EQ(refusal({"--=x"}), "There is no option -- here.");
}

TEST(OptionScanner, aSwitchMayBeRepeated) {
    EXPECT_TRUE(scan({"-q", "-q"}).has("quiet"));
}
