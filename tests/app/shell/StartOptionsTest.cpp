#include "app/StartOptions.h"

#include <gtest/gtest.h>

#include "platform/process/UsageError.h"

using namespace korvane;

namespace {

TEST(StartOptions, withoutArgumentsTheWindowOpensEmpty) {
    const auto options = parseStartOptions({});
    EXPECT_FALSE(options.video);
    EXPECT_TRUE(options.printout.empty());
}

TEST(StartOptions, oneArgumentIsTheVideo) {
    EXPECT_EQ(parseStartOptions({"a clip.mp4"}).video, "a clip.mp4");
    EXPECT_EQ(parseStartOptions({"--", "-strange.mp4"}).video, "-strange.mp4");
}

TEST(StartOptions, helpAndVersionArePrintedInsteadOfOpeningAWindow) {
    for (const char* help : {"--help", "-h", "--he"})
        EXPECT_NE(parseStartOptions({help}).printout.find("Usage: korvane [VIDEO]"), std::string::npos)
            << help;
    for (const char* version : {"--version", "-V"})
        EXPECT_EQ(parseStartOptions({version}).printout.find("korvane "), 0U) << version;
    EXPECT_FALSE(parseStartOptions({"clip.mp4", "--version"}).video);
}

TEST(StartOptions, whatCanNotBeMeantIsRefused) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"--nonsense"}, {"-x"}, {"a.mp4", "b.mp4"}, {""}, {"--help=all"}})
        EXPECT_THROW(parseStartOptions(arguments), UsageError) << arguments.front();
}

}  // namespace
