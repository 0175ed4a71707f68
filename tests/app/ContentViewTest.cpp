#include "app/ContentView.h"

#include <QMetaProperty>

#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

using ContentViewState = Screen;

TEST_F(ContentViewState, everyFieldBeginsWithItsInitialValue) {
    const ContentView& v = view();
    EXPECT_EQ(v.selectedURL(), std::nullopt);
    EXPECT_EQ(v.selectedLanguage().id, "ru-RU");
    EXPECT_FALSE(v.isProcessing());
    EXPECT_TRUE(v.segments().empty());
    EXPECT_EQ(v.errorMessage(), std::nullopt);
    EXPECT_FALSE(v.transcriptionTask().has_value());
    EXPECT_TRUE(v.selectedWordIndices().empty());
    EXPECT_EQ(v.subtitleSettings(), SubtitleSettings());
    EXPECT_FALSE(v.previewBundle().has_value());
    EXPECT_FALSE(v.isBuildingPreview());
    EXPECT_FALSE(v.isExporting());
    EXPECT_EQ(v.overallProgress(), 0.0);
    EXPECT_EQ(v.statusText().toStdString(), "Ready");
    EXPECT_EQ(v.processingStartTime(), std::nullopt);
    EXPECT_EQ(v.errorText().toStdString(), "");
    EXPECT_FALSE(v.hasError());
}

TEST_F(ContentViewState, thePickerOffersTheCatalogueInItsOrder) {
    ASSERT_EQ(view().languageNames().size(), 9);
    for (int index = 0; index < 9; ++index)
        EXPECT_EQ(view().languageNames()[index].toStdString(),
                  languageCatalogue()[static_cast<std::size_t>(index)].name);
    EXPECT_EQ(view().selectedLanguageIndex(), 0);
}

TEST_F(ContentViewState, aLanguageIsChosenByItsPlace) {
    int changes = 0;
    QObject::connect(&view(), &ContentView::selectedLanguageChanged, &view(), [&] { ++changes; });
    view().selectLanguage(8);
    EXPECT_EQ(view().selectedLanguage(), languageCatalogue()[8]);
    EXPECT_EQ(view().selectedLanguageIndex(), 8);
    view().selectLanguage(8);
    EXPECT_EQ(changes, 1);
    view().selectLanguage(-1);
    view().selectLanguage(9);
    EXPECT_EQ(view().selectedLanguageIndex(), 8);
}

TEST_F(ContentViewState, thePickerIsDeafWhileAnOperationRuns) {
    peer().setExporting(true);
    view().selectLanguage(2);
    EXPECT_EQ(view().selectedLanguageIndex(), 0);
}

TEST_F(ContentViewState, theStoredStyleIsLoaded) {
    SubtitleSettings style;
    style.fontSize = 31.0;
    style.hasShadow = false;
    ASSERT_TRUE(style.save(defaults_));
    EXPECT_EQ(makeView(defaults_)->subtitleSettings(), style);
}

TEST_F(ContentViewState, aStoreThatCannotBeReadGivesTheDefaultStyleAndIsLeftAlone) {
    const QByteArray rubbish("{\"fontSize\": \"big\"");
    defaults_.setData(rubbish, SubtitleSettings::defaultsKey);
    const auto other = makeView(defaults_);
    EXPECT_EQ(other->subtitleSettings(), SubtitleSettings());
    EXPECT_FALSE(other->hasError());
    EXPECT_EQ(defaults_.data(SubtitleSettings::defaultsKey), rubbish);
}

TEST_F(ContentViewState, theStyleIsSavedAtEachChange) {
    int changes = 0;
    QObject::connect(&view(), &ContentView::subtitleSettingsChanged, &view(), [&] { ++changes; });
    SubtitleSettings style;
    for (const double size : {20.0, 30.0, 40.0}) {
        style.fontSize = size;
        view().setSubtitleSettings(style);
        EXPECT_EQ(SubtitleSettings::load(defaults_).fontSize, size);
    }
    view().setSubtitleSettings(style);
    EXPECT_EQ(changes, 3);
}

TEST_F(ContentViewState, theEditorChangesAndShowsTheStyle) {
    view().styleEditor()->setFontSize(55.0);
    EXPECT_EQ(view().subtitleSettings().fontSize, 55.0);
    EXPECT_EQ(SubtitleSettings::load(defaults_).fontSize, 55.0);
    SubtitleSettings style = view().subtitleSettings();
    style.fontSize = 66.0;
    view().setSubtitleSettings(style);
    EXPECT_EQ(view().styleEditor()->fontSize(), 66.0);
}

TEST_F(ContentViewState, theStyleMayChangeWhileAnOperationRuns) {
    peer().setProcessing(true);
    view().styleEditor()->setHasShadow(false);
    EXPECT_FALSE(view().subtitleSettings().hasShadow);
}

/// A full disk, a folder without permission.
class UnwritableDefaults final : public MemoryUserDefaults {
  public:
    bool setData(const QByteArray&, const std::string&) override { return false; }
};

TEST_F(ContentViewState, aStoreThatCannotBeWrittenDisturbsNobody) {
    UnwritableDefaults full;
    const auto other = makeView(full);
    other->styleEditor()->setFontSize(44.0);
    EXPECT_EQ(other->subtitleSettings().fontSize, 44.0);
    EXPECT_EQ(other->styleEditor()->fontSize(), 44.0);
    EXPECT_FALSE(other->hasError());
    EXPECT_EQ(other->statusText().toStdString(), "Ready");
}

TEST_F(ContentViewState, theTextsOfAllPropertiesCanBeReadByName) {
    // What the window binds to; a name that is misspelt or has no signal would never be shown anew.
    for (const char* name : {"fileNameText", "hasVideo",        "languageNames",     "selectedLanguageIndex",
                             "isProcessing", "isAnyActive",     "canTranscribe",     "errorText",
                             "hasError",     "overallProgress", "statusText",        "etaLabel",
                             "percentText",  "phaseText",       "dotColor",          "words",
                             "hasWords",     "wordsTitle",      "emptyStateText",    "styleEditor",
                             "hasSelection", "exportSummary",   "exportDurationText"}) {
        const QMetaObject& meta = ContentView::staticMetaObject;
        const int index = meta.indexOfProperty(name);
        ASSERT_GE(index, 0) << name;
        const QMetaProperty property = meta.property(index);
        EXPECT_TRUE(property.isConstant() || property.hasNotifySignal()) << name;
        EXPECT_TRUE(property.read(&view()).isValid()) << name;
    }
}

}  // namespace
}  // namespace korvane
