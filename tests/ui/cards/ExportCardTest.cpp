#include "ShownCard.h"

namespace korvane {
namespace {

using Told = std::vector<qsizetype>;

class ExportCard : public testing::Test {
  protected:
    ShownCard shown_{"ExportCard",
                     {{QStringLiteral("summary"), QStringLiteral("12 words · 1080 × 1920")},
                      {QStringLiteral("durationText"), QStringLiteral("1:15")},
                      {QStringLiteral("hasSelection"), true},
                      {QStringLiteral("previewEnabled"), true},
                      {QStringLiteral("exportEnabled"), true},
                      {QStringLiteral("stopVisible"), true},
                      {QStringLiteral("folderVisible"), true}},
                     360};
    QSignalSpy preview_{shown_.card.get(), SIGNAL(previewRequested())};
    QSignalSpy export_{shown_.card.get(), SIGNAL(exportRequested())};
    QSignalSpy stop_{shown_.card.get(), SIGNAL(stopRequested())};
    QSignalSpy folder_{shown_.card.get(), SIGNAL(folderRequested())};
    QQuickItem& previewButton_ = shown_.named("preview");
    QQuickItem& exportButton_ = shown_.named("export");
    QQuickItem& stopButton_ = shown_.named("stop");
    QQuickItem& folderButton_ = shown_.named("showInFolder");
    QQuickItem& hint_ = shown_.named("exportHint");

    Told told() const { return {preview_.count(), export_.count(), stop_.count(), folder_.count()}; }
    void clickAll() {
        for (QQuickItem* button : {&previewButton_, &exportButton_, &stopButton_, &folderButton_})
            shown_.click(*button);
    }
};

TEST_F(ExportCard, saysWhatTheReelWillBeAndBesideItHowLong) {
    const QRectF what = shown_.place(shown_.saying("12 words · 1080 × 1920"));
    const QRectF length = shown_.place(shown_.saying("1:15"));
    EXPECT_LT(what.right(), length.left());
    EXPECT_EQ(what.top(), length.top());
}

TEST_F(ExportCard, hintsAtWhatIsMissingWhileNothingIsChosen) {
    EXPECT_FALSE(hint_.isVisible());
    shown_.set("hasSelection", false);
    EXPECT_TRUE(hint_.isVisible());
    EXPECT_EQ(text(hint_), QStringLiteral("Select words to export"));
    EXPECT_GE(shown_.place(hint_).top(), shown_.place(shown_.saying("1:15")).bottom());
    EXPECT_LE(shown_.place(hint_).bottom(), shown_.place(previewButton_).top());
}

TEST_F(ExportCard, hintsThatWhatWasChangedSinceThePreviewIsNotExported) {
    shown_.set("folderVisible", false);
    shown_.set("previewOutdated", true);
    EXPECT_TRUE(hint_.isVisible());
    EXPECT_EQ(text(hint_), QStringLiteral("Preview again to export your changes"));
    EXPECT_TRUE(shown_.place(*shown_.card).contains(shown_.place(hint_)));
    shown_.set("hasSelection", false);
    EXPECT_EQ(text(hint_), QStringLiteral("Select words to export"));
}

TEST_F(ExportCard, eachButtonSaysWhatItDoesAndTellsItsOwnSignal) {
    EXPECT_EQ(text(previewButton_), QStringLiteral("Preview"));
    EXPECT_EQ(text(exportButton_), QStringLiteral("Export"));
    EXPECT_EQ(exportButton_.property("iconName").toString(), QStringLiteral("arrow.down.circle.fill"));
    EXPECT_EQ(text(stopButton_), QStringLiteral("Stop"));
    EXPECT_EQ(text(folderButton_), QStringLiteral("Show in folder"));
    shown_.click(previewButton_);
    EXPECT_EQ(told(), (Told{1, 0, 0, 0}));
    shown_.click(exportButton_);
    EXPECT_EQ(told(), (Told{1, 1, 0, 0}));
    shown_.click(stopButton_);
    EXPECT_EQ(told(), (Told{1, 1, 1, 0}));
    shown_.click(folderButton_);
    EXPECT_EQ(told(), (Told{1, 1, 1, 1}));
}

TEST_F(ExportCard, whatIsOffOrNotThereTellsNobody) {
    shown_.set("previewEnabled", false);
    clickAll();
    EXPECT_EQ(told(), (Told{0, 1, 1, 1}));
    shown_.set("exportEnabled", false);
    clickAll();
    EXPECT_EQ(told(), (Told{0, 1, 2, 2}));
    shown_.set("stopVisible", false);
    shown_.set("folderVisible", false);
    EXPECT_FALSE(stopButton_.isVisible());
    EXPECT_FALSE(folderButton_.isVisible());
    clickAll();
    EXPECT_EQ(told(), (Told{0, 1, 2, 2}));
}

TEST_F(ExportCard, nothingMovesWhateverComesAndGoes) {
    const auto places = [&] {
        return std::vector{shown_.place(previewButton_), shown_.place(exportButton_),
                           shown_.place(*shown_.card)};
    };
    const auto before = places();
    for (const char* property :
         {"hasSelection", "previewEnabled", "exportEnabled", "stopVisible", "folderVisible"}) {
        shown_.set(property, false);
        EXPECT_EQ(places(), before) << property;
    }
}

}  // namespace
}  // namespace korvane
