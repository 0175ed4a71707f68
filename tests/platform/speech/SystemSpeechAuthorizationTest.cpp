#include "platform/speech/SystemSpeechAuthorization.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

using Status = SpeechAuthorizationStatus;

class SystemSpeechAuthorizationTest : public testing::Test {
  protected:
    Status status() {
        StandardFolders folders;
        folders.systemConfig = root.path() / "etc";
        folders.configHome = root.path() / "home";
        SystemSpeechAuthorization authorization(
            [this](const char* name) -> std::optional<std::string> {
                EXPECT_STREQ(name, "KORVANE_SPEECH_RECOGNITION");
                return variable;
            },
            folders);
        std::optional<Status> answer;
        int calls = 0;
        authorization.request([&](Status given) {
            answer = given;
            ++calls;
        });
        EXPECT_EQ(calls, 1);
        return answer.value_or(Status::notDetermined);
    }
    void administratorSays(const std::string& word) { root.file("etc/korvane/speech-recognition", word); }
    void personSays(const std::string& word) { root.file("home/korvane/speech-recognition", word); }

    TemporaryFolder root;
    std::optional<std::string> variable;
};

TEST_F(SystemSpeechAuthorizationTest, nobodyRefusedMeansAuthorized) {
    EXPECT_EQ(status(), Status::authorized);
    variable = "";
    EXPECT_EQ(status(), Status::authorized);
    variable = "authorized";
    administratorSays("authorized\n");
    personSays("\n");
    EXPECT_EQ(status(), Status::authorized);
}

TEST_F(SystemSpeechAuthorizationTest, eachPlaceCanDeny) {
    variable = "denied";
    EXPECT_EQ(status(), Status::denied);
    variable.reset();
    administratorSays("denied\n");
    EXPECT_EQ(status(), Status::denied);
    administratorSays("");
    personSays("  denied");
    EXPECT_EQ(status(), Status::denied);
}

TEST_F(SystemSpeechAuthorizationTest, eachPlaceCanRestrict) {
    variable = "restricted";
    EXPECT_EQ(status(), Status::restricted);
    variable.reset();
    administratorSays("restricted\n");
    EXPECT_EQ(status(), Status::restricted);
    administratorSays("");
    personSays("restricted");
    EXPECT_EQ(status(), Status::restricted);
}

TEST_F(SystemSpeechAuthorizationTest, theStrictestPlaceCounts) {
    variable = "authorized";
    administratorSays("restricted");
    personSays("denied");
    EXPECT_EQ(status(), Status::restricted);
    administratorSays("authorized");
    EXPECT_EQ(status(), Status::denied);
}

TEST_F(SystemSpeechAuthorizationTest, anUnknownWordOrAFileThatIsNoneCountsAsDenied) {
    variable = "nope";
    EXPECT_EQ(status(), Status::denied);
    variable.reset();
    std::filesystem::create_directories(root.path() / "etc" / "korvane" / "speech-recognition");
    EXPECT_EQ(status(), Status::denied);
}

TEST_F(SystemSpeechAuthorizationTest, theAnswerIsLookedUpAnewEachTime) {
    EXPECT_EQ(status(), Status::authorized);
    personSays("denied");
    EXPECT_EQ(status(), Status::denied);
}

TEST_F(SystemSpeechAuthorizationTest, theRawNumbersAreFixed) {
    EXPECT_EQ(static_cast<int>(Status::notDetermined), 0);
    EXPECT_EQ(static_cast<int>(Status::denied), 1);
    EXPECT_EQ(static_cast<int>(Status::restricted), 2);
    EXPECT_EQ(static_cast<int>(Status::authorized), 3);
}

}  // namespace
}  // namespace korvane
