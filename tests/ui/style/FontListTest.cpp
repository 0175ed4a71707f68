#include <gtest/gtest.h>

#include <QFont>
#include <QGuiApplication>
#include <QSignalSpy>
#include <chrono>

#include "ui/style/FontListModel.h"
#include "ui/style/FontWords.h"

namespace korvane {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QStringList listed(const FontListModel& model) {
    QStringList names;
    for (int line = 0; line < model.count(); ++line)
        names.push_back(model.familyAt(line));
    return names;
}

std::vector<FontListModel::Row> rowsOf(const std::vector<const char*>& names) {
    std::vector<FontListModel::Row> rows;
    for (const char* name : names)
        rows.push_back({text(name), true});
    return rows;
}

TEST(FontList, showsAllInTheirOrderWithoutASearch) {
    FontListModel model;
    model.setRows(rowsOf({"Zapf", "Arial", "Inter"}));
    EXPECT_EQ(listed(model), QStringList({text("Zapf"), text("Arial"), text("Inter")}));
    EXPECT_EQ(model.indexOf(text("Inter")), 2);
    EXPECT_EQ(model.indexOf(text("Nowhere")), -1);
    EXPECT_EQ(model.familyAt(-1), QString());
    EXPECT_EQ(model.familyAt(3), QString());
}

TEST(FontList, findsWordsInAnyOrderCaseAndAccent) {
    FontListModel model;
    model.setRows(rowsOf({"Noto Sans", "Noto Sans Mono", "Noto Serif", "Éclair Sans", "Ｗｉｄｅ"}));
    const struct {
        const char* search;
        QStringList found;
    } rows[] = {
        {"mono noto", {text("Noto Sans Mono")}},
        {"  SANS   no ", {text("Noto Sans"), text("Noto Sans Mono")}},
        {"eclair", {text("Éclair Sans")}},
        {"E\xcc\x81"
         "CL",
         {text("Éclair Sans")}},
        {"wide", {text("Ｗｉｄｅ")}},
        {"notosans", {}},
        {"x", {}},
    };
    for (const auto& row : rows) {
        model.setSearch(text(row.search));
        EXPECT_EQ(listed(model), row.found) << row.search;
    }
    model.setSearch({});
    EXPECT_EQ(model.count(), 5);
}

TEST(FontList, tellsWhenItsCountChanges) {
    FontListModel model;
    QSignalSpy count(&model, &FontListModel::countChanged);
    model.setRows(rowsOf({"A", "B"}));
    model.setSearch(text("a"));
    model.setSearch(text("A"));
    EXPECT_EQ(count.count(), 2);
}

TEST(FontList, saysWhyNothingIsListed) {
    FontListModel model;
    QSignalSpy told(&model, &FontListModel::emptyTextChanged);
    EXPECT_EQ(model.emptyText(), text("Reading the fonts…"));
    model.setSearch(text("a"));
    EXPECT_EQ(model.emptyText(), text("Reading the fonts…"));
    told.clear();
    model.setRows({});
    EXPECT_EQ(model.emptyText(), text("No fonts found"));
    EXPECT_EQ(told.count(), 1) << "though as few are listed as before";
    model.setRows(rowsOf({"B"}));
    EXPECT_EQ(model.emptyText(), text("No font of that name"));
    model.setSearch({});
    EXPECT_EQ(model.emptyText(), QString());
}

TEST(FontList, aFamilyThatCannotWriteItsNameIsShownInTheScreensFont) {
    FontListModel model;
    model.setRows({{text("Text"), true}, {text("Symbols"), false}});
    const auto sample = [&](int line) {
        return model.data(model.index(line), FontListModel::SampleFamilyRole).toString();
    };
    EXPECT_EQ(sample(0), text("Text"));
    EXPECT_EQ(sample(1), QGuiApplication::font().family());
    EXPECT_EQ(model.data(model.index(1), FontListModel::FamilyRole).toString(), text("Symbols"));
    EXPECT_FALSE(model.data(model.index(5), FontListModel::FamilyRole).isValid());
}

TEST(FontList, tenThousandFamiliesAreSearchedWithinAFrame) {
    FontListModel model;
    std::vector<FontListModel::Row> rows;
    for (int i = 0; i < 10000; ++i)
        rows.push_back({QStringLiteral("Family Number %1 Größe").arg(i), true});
    model.setRows(rows);
    auto fastest = std::chrono::steady_clock::duration::max();
    for (int attempt = 0; attempt < 5; ++attempt) {
        model.setSearch({});
        const auto start = std::chrono::steady_clock::now();
        model.setSearch(text("9999 große num"));
        fastest = std::min(fastest, std::chrono::steady_clock::now() - start);
    }
    EXPECT_EQ(model.count(), 1);
    EXPECT_LT(fastest, std::chrono::milliseconds(16));
}

TEST(FontWords, theWeightIsReadFromAName) {
    const struct {
        const char* name;
        const char* weight;
    } rows[] = {{"HelveticaNeue-Bold", "Bold"},
                {"Inter-SemiBoldItalic", "Semi Bold Italic"},
                {"Inter", "Regular"},
                {"", "Regular"},
                {"Odd-", "Regular"},
                {"Futura-CondensedExtraBold", "Condensed Extra Bold"}};
    for (const auto& row : rows)
        EXPECT_EQ(weightInPostScriptName(row.name), text(row.weight)) << row.name;
}

TEST(FontWords, aSubstituteWithoutAStyleIsCalledByItsFamily) {
    SubtitleSettings stored;
    FontFace face;
    face.family = "DejaVu Sans";
    face.postScriptName = "DejaVuSans";
    EXPECT_EQ(substitutionNote(stored, false, face),
              text("Helvetica Neue isn’t installed here; DejaVu Sans takes its place."));
    stored.fontPostscriptName = "DejaVuSans";
    EXPECT_EQ(substitutionNote(stored, false, face), QString());
}

}  // namespace
}  // namespace korvane
