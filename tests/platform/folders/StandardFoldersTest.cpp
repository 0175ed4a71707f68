#include "platform/folders/StandardFolders.h"

#include <gtest/gtest.h>

#include <map>

namespace korvane {
namespace {

Environment with(std::map<std::string, std::string> variables) {
    return [variables](const char* name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(StandardFolders, withoutVariablesTheyLieInTheHomeFolder) {
    const auto folders = StandardFolders::of(with({{"HOME", "/home/ada"}}));
    EXPECT_EQ(folders.configHome, "/home/ada/.config");
    EXPECT_EQ(folders.dataHome, "/home/ada/.local/share");
    EXPECT_EQ(folders.dataDirs, (std::vector<std::filesystem::path>{"/usr/local/share", "/usr/share"}));
    EXPECT_EQ(folders.configDirs, (std::vector<std::filesystem::path>{"/etc/xdg"}));
}

TEST(StandardFolders, variablesCount) {
    const auto folders = StandardFolders::of(with({{"HOME", "/h"},
                                                   {"XDG_CONFIG_HOME", "/c"},
                                                   {"XDG_DATA_HOME", "/d"},
                                                   {"XDG_DATA_DIRS", "/a:/b"},
                                                   {"XDG_CONFIG_DIRS", "/e:/f"}}));
    EXPECT_EQ(folders.configHome, "/c");
    EXPECT_EQ(folders.dataHome, "/d");
    EXPECT_EQ(folders.dataDirs, (std::vector<std::filesystem::path>{"/a", "/b"}));
    EXPECT_EQ(folders.configDirs, (std::vector<std::filesystem::path>{"/e", "/f"}));
    EXPECT_EQ(folders.systemConfig, "/etc") << "what is forbidden there no variable allows";
}

TEST(StandardFolders, relativeAndEmptyPathsAreIgnored) {
    const auto folders = StandardFolders::of(with({{"HOME", "/h"},
                                                   {"XDG_CONFIG_HOME", ""},
                                                   {"XDG_DATA_HOME", "x/y"},
                                                   {"XDG_DATA_DIRS", ":rel:/a:"},
                                                   {"XDG_CONFIG_DIRS", "etc:/b"}}));
    EXPECT_EQ(folders.configHome, "/h/.config");
    EXPECT_EQ(folders.dataHome, "/h/.local/share");
    EXPECT_EQ(folders.dataDirs, (std::vector<std::filesystem::path>{"/a"}));
    EXPECT_EQ(folders.configDirs, (std::vector<std::filesystem::path>{"/b"}));
}

TEST(StandardFolders, withoutAHomeThereIsNoPersonalFolder) {
    const auto folders = StandardFolders::of(with({}));
    EXPECT_TRUE(folders.configHome.empty());
    EXPECT_TRUE(folders.dataHome.empty());
}

TEST(StandardFolders, theProcessEnvironmentIsReadAtEachCall) {
    const auto environment = processEnvironment();
    ::setenv("KORVANE_TEST_VARIABLE", "1", 1);
    EXPECT_EQ(environment("KORVANE_TEST_VARIABLE"), "1");
    ::unsetenv("KORVANE_TEST_VARIABLE");
    EXPECT_EQ(environment("KORVANE_TEST_VARIABLE"), std::nullopt);
}

}  // namespace
}  // namespace korvane
