#include "app/UnusableSpeechModels.h"

#include <gtest/gtest.h>

#include <string>

namespace korvane {
namespace {

TEST(UnusableSpeechModels, offerNothingAndSayWhatHelps) {
    const auto found = UnusableSpeechModels().find();
    EXPECT_TRUE(found.models.empty());
    EXPECT_TRUE(found.inUse.empty());
    EXPECT_NE(found.notice.find("without Whisper"), std::string::npos);
    EXPECT_NE(found.notice.find("./run"), std::string::npos);
}

TEST(UnusableSpeechModels, refuseAFileWithTheSameSentence) {
    UnusableSpeechModels models;
    try {
        models.add("/ggml-base.bin", [](double) {}, {});
        FAIL() << "it was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(models.find().notice, error.what());
    }
    EXPECT_THROW(models.download("base", [](const auto&) {}, {}), std::runtime_error);
}

}  // namespace
}  // namespace korvane
