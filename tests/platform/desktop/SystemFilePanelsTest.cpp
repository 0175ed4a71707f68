#include "platform/desktop/SystemFilePanels.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <fstream>

using namespace korvane;

namespace {

const PanelFileType mpeg4{"video/mp4", "mp4", "MPEG-4 movie"};
const PanelFileType quickTime{"video/quicktime", "mov", "QuickTime movie"};
const OpenPanelRequest openRequest{"Select a Video", {mpeg4, quickTime}};
const SavePanelRequest saveRequest{"Export Video", {mpeg4}, "reel.mp4", true};

TEST(NameFilters, allTypesTogetherComeFirstThenEachInOrder) {
    const QStringList filters = nameFilters(openRequest.allowedTypes);
    ASSERT_EQ(filters.size(), 3);
    EXPECT_TRUE(filters[0].startsWith(QStringLiteral("MPEG-4 movie or QuickTime movie (")));
    EXPECT_TRUE(filters[1].startsWith(QStringLiteral("MPEG-4 movie (*.mp4 *.MP4")));
    EXPECT_TRUE(filters[2].startsWith(QStringLiteral("QuickTime movie (")));
    for (const auto* pattern : {"*.mp4", "*.MP4", "*.mov", "*.MOV"})
        EXPECT_TRUE(filters[0].contains(QLatin1String(pattern))) << pattern;
    EXPECT_FALSE(filters[1].contains(QStringLiteral("*.mov")));
}

TEST(NameFilters, oneTypeNeedsNoSum) {
    EXPECT_EQ(nameFilters({mpeg4}).size(), 1);
    EXPECT_TRUE(nameFilters({}).isEmpty());
}

TEST(NameFilters, aTypeThatNobodyKnowsGoesByItsSuffix) {
    EXPECT_EQ(nameFilters({{"video/x-nobody-knows", "xyz", "Strange film"}}),
              QStringList{QStringLiteral("Strange film (*.xyz *.XYZ)")});
}

TEST(OpenPanel, offersOneExistingFileAndNoFolder) {
    QFileDialog dialog;
    SystemFilePanels::configure(dialog, openRequest);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select a Video"));
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    EXPECT_FALSE(dialog.testOption(QFileDialog::ShowDirsOnly));
    EXPECT_TRUE(dialog.testOption(QFileDialog::ReadOnly));
}

TEST(SavePanel, proposesANameAsksBeforeOverwritingAndMayMakeFolders) {
    QFileDialog dialog;
    SystemFilePanels::configure(dialog, saveRequest);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Export Video"));
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(dialog.fileMode(), QFileDialog::AnyFile);
    EXPECT_EQ(dialog.defaultSuffix(), QStringLiteral("mp4"));
    EXPECT_FALSE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    EXPECT_FALSE(dialog.testOption(QFileDialog::ReadOnly));
    EXPECT_TRUE(dialog.selectedFiles().constFirst().endsWith(QStringLiteral("/reel.mp4")));
}

TEST(SavePanel, makesNoFoldersWhereNoneAreWanted) {
    QFileDialog dialog;
    auto request = saveRequest;
    request.canCreateFolders = false;
    SystemFilePanels::configure(dialog, request);
    EXPECT_TRUE(dialog.testOption(QFileDialog::ReadOnly));
}

/// Does something with the panel as soon as it stands.
void whenPanelStands(const std::function<void(QFileDialog&)>& act) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible())
            return;
        timer->deleteLater();
        act(*dialog);
    });
    timer->start(1);
}

class RunningPanels : public testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(folder.filePath(QStringLiteral("a clip ä.mp4")).toStdString()) << "x";
    }

    QTemporaryDir folder;
    SystemFilePanels panels{QPalette(Qt::black)};
};

TEST_F(RunningPanels, theFileChosenByOkComesBack) {
    whenPanelStands([&](QFileDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(folder.filePath(QStringLiteral("a clip ä.mp4")));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_EQ(panels.runOpenPanel(openRequest),
              folder.filePath(QStringLiteral("a clip ä.mp4")).toStdString());
}

TEST_F(RunningPanels, cancellingGivesNothing) {
    whenPanelStands([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(panels.runOpenPanel(openRequest), std::nullopt);
    whenPanelStands([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(panels.runSavePanel(saveRequest), std::nullopt);
}

TEST_F(RunningPanels, nothingIsWrittenDownForAnotherDay) {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QFile::remove(config + QStringLiteral("/QtProject.conf"));
    whenPanelStands([&](QFileDialog& dialog) {
        dialog.setDirectory(folder.path());
        dialog.findChild<QLineEdit*>()->setText(QStringLiteral("a clip ä.mp4"));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    ASSERT_TRUE(panels.runOpenPanel(openRequest));
    EXPECT_FALSE(QFile::exists(config + QStringLiteral("/QtProject.conf")));
}

TEST_F(RunningPanels, aNameWithoutSuffixGetsTheUsualOne) {
    whenPanelStands([&](QFileDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(folder.filePath(QStringLiteral("reel")));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_EQ(panels.runSavePanel(saveRequest), folder.filePath(QStringLiteral("reel.mp4")).toStdString());
}

TEST_F(RunningPanels, theNextPanelStartsWhereTheLastWasLeft) {
    whenPanelStands([&](QFileDialog& dialog) {
        dialog.setDirectory(folder.path());
        dialog.findChild<QLineEdit*>()->setText(QStringLiteral("reel.mp4"));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    ASSERT_TRUE(panels.runSavePanel(saveRequest));
    QString started;
    whenPanelStands([&](QFileDialog& dialog) {
        started = dialog.directory().absolutePath();
        dialog.reject();
    });
    panels.runOpenPanel(openRequest);
    EXPECT_EQ(started, QDir(folder.path()).absolutePath());
}

}  // namespace
