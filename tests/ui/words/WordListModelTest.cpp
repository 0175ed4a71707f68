#include "ui/words/WordListModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using korvane::SpeechSegment;
using korvane::WordListModel;

namespace {

struct Transcript {
    std::vector<SpeechSegment> segments{{"one", 0, 1}, {"двa", 1, 2}, {"", 2, 3}};
    std::set<int> selected{0, 2};
    WordListModel model{segments, selected};
};

}  // namespace

TEST(WordListModel, hasARowForEachWordWithItsTextAndWhetherItIsSelected) {
    Transcript t;
    const QAbstractItemModelTester tester(&t.model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_EQ(t.model.rowCount(), 3);
    EXPECT_EQ(t.model.index(1).data(WordListModel::textRole).toString(), QStringLiteral("двa"));
    EXPECT_EQ(t.model.index(2).data(WordListModel::textRole).toString(), QString());
    EXPECT_TRUE(t.model.index(0).data(WordListModel::selectedRole).toBool());
    EXPECT_FALSE(t.model.index(1).data(WordListModel::selectedRole).toBool());
    EXPECT_EQ(t.model.roleNames().value(WordListModel::textRole), "text");
    EXPECT_EQ(t.model.roleNames().value(WordListModel::selectedRole), "selected");
}

TEST(WordListModel, tellsWhenTheWordsAreReplaced) {
    Transcript t;
    QSignalSpy reset(&t.model, &QAbstractItemModel::modelReset);
    const QModelIndex old = t.model.index(2);
    t.segments = {{"only", 0, 1}};
    t.selected = {0};
    EXPECT_FALSE(t.model.data(old, WordListModel::textRole).isValid());
    t.model.wordsReplaced();
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(t.model.rowCount(), 1);
}

TEST(WordListModel, tellsWhichSelectionsChangedAndNothingElse) {
    Transcript t;
    QSignalSpy changed(&t.model, &QAbstractItemModel::dataChanged);
    t.selected = {1};
    t.model.selectionChanged(-4, 9);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 0);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 2);
    EXPECT_EQ(changed[0][2].value<QList<int>>(), QList<int>{WordListModel::selectedRole});
    EXPECT_TRUE(t.model.index(1).data(WordListModel::selectedRole).toBool());
}

TEST(WordListModel, staysSilentWhenThereAreNoWords) {
    Transcript t;
    t.segments.clear();
    t.selected.clear();
    t.model.wordsReplaced();
    QSignalSpy changed(&t.model, &QAbstractItemModel::dataChanged);
    t.model.selectionChanged(0, 0);
    EXPECT_EQ(changed.count(), 0);
}
