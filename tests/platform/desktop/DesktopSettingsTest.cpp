#include "platform/desktop/DesktopSettings.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <fstream>

#include "platform/desktop/Compositor.h"

using namespace korvane;

namespace {

class DesktopSettingsFiles : public testing::Test {
  protected:
    void write(const std::string& name, const std::string& text) {
        const auto path = environment().configFolder / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    DesktopEnvironment environment(const std::string& desktop = "") const {
        return {folder_.path().toStdString(), desktop, false};
    }

    const std::string gtkLeft = "[Settings]\ngtk-decoration-layout=close:\n";
    const std::string gtkRight = "[Settings]\ngtk-decoration-layout=:maximize,minimize,close\n";
    const std::string kwinRight = "[org.kde.kdecoration2]\nButtonsOnLeft=M\nButtonsOnRight=IAX\n";

  private:
    QTemporaryDir folder_;
};

TEST_F(DesktopSettingsFiles, withoutFilesTheButtonsStandOnTheRight) {
    EXPECT_EQ(titleButtonsFromFiles(environment()), TitleButtons());
}

TEST_F(DesktopSettingsFiles, theNewerGtkFileComesBeforeTheOlder) {
    write("gtk-3.0/settings.ini", gtkRight);
    write("gtk-4.0/settings.ini", gtkLeft);
    EXPECT_TRUE(titleButtonsFromFiles(environment()).onLeft);
}

TEST_F(DesktopSettingsFiles, underKdeItsOwnFileComesFirst) {
    write("gtk-3.0/settings.ini", gtkLeft);
    write("kwinrc", kwinRight);
    EXPECT_FALSE(titleButtonsFromFiles(environment("KDE")).onLeft);
    EXPECT_TRUE(titleButtonsFromFiles(environment("XFCE")).onLeft);
}

TEST_F(DesktopSettingsFiles, aFolderUnderTheFilesNameSaysNothing) {
    write("kwinrc/inside", "");
    write("gtk-4.0/settings.ini/inside", "");
    EXPECT_EQ(titleButtonsFromFiles(environment("KDE")), TitleButtons());
}

TEST_F(DesktopSettingsFiles, withoutASessionBusTheFilesHaveTheWord) {
    write("gtk-4.0/settings.ini", gtkLeft);
    DesktopSettings settings(environment());
    settings.takeAnswer();
    EXPECT_TRUE(settings.titleButtons().onLeft);
}

TEST(Compositor, thereIsNoneWithoutADisplay) {
    EXPECT_FALSE(isCompositorRunning());
}

}  // namespace
