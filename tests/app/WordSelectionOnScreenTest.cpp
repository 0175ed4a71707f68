#include <QSignalSpy>

#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

class WordSelectionOnScreen : public Screen {
  protected:
    WordSelectionOnScreen() { peer().setWords(manyWords(10)); }

    std::vector<double> startsOfSelected() {
        std::vector<double> starts;
        for (const SpeechSegment& segment : view().selectedSegments())
            starts.push_back(segment.start());
        return starts;
    }
    bool rowIsSelected(int row) {
        return view().words()->index(row).data(WordListModel::selectedRole).toBool();
    }
};

TEST_F(WordSelectionOnScreen, eachClickTogglesExactlyOneWord) {
    peer().setSelected({});
    view().toggleWord(3);
    EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{3}));
    view().toggleWord(9);
    EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{3, 9}));
    view().toggleWord(3);
    EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{9}));
}

TEST_F(WordSelectionOnScreen, selectedWordsComeInTheOrderOfSpeechNotOfClicking) {
    view().selectNoWords();
    for (const int index : {5, 2, 9})
        view().toggleWord(index);
    EXPECT_EQ(startsOfSelected(), (std::vector<double>{1.0, 2.5, 4.5}));
}

TEST_F(WordSelectionOnScreen, allThenOneClickLeavesEveryWordButThatOne) {
    view().selectNoWords();
    view().selectAllWords();
    EXPECT_EQ(view().selectedWordIndices(), upTo(10));
    view().toggleWord(4);
    EXPECT_EQ(view().selectedWordIndices().size(), 9u);
    EXPECT_FALSE(view().selectedWordIndices().contains(4));
}

TEST_F(WordSelectionOnScreen, noneHasNoDuration) {
    view().selectNoWords();
    EXPECT_TRUE(view().selectedWordIndices().empty());
    EXPECT_FALSE(view().hasSelection());
    EXPECT_EQ(view().selectedDuration(), 0.0);
    EXPECT_TRUE(view().selectedSegments().empty());
    EXPECT_EQ(view().exportSummary().toStdString(), "0 words · 1080 × 1920");
}

TEST_F(WordSelectionOnScreen, theDurationCountsWordsWithoutTheGapsBetweenThem) {
    peer().setWords({{"a", 1.0, 1.25}, {"b", 10.0, 10.5}, {"c", 20.0, 19.75}});
    EXPECT_DOUBLE_EQ(view().selectedDuration(), 0.5);  // the last one ends before it starts
    view().toggleWord(2);
    EXPECT_DOUBLE_EQ(view().selectedDuration(), 0.75);
    EXPECT_EQ(view().exportSummary().toStdString(), "2 words · 1080 × 1920");
    EXPECT_EQ(view().exportDurationText().toStdString(), "0.8s");
}

TEST_F(WordSelectionOnScreen, nothingChangesWhileAnOperationRuns) {
    peer().setSelected({1, 2});
    for (const auto& set : {&ContentViewPeer::setProcessing, &ContentViewPeer::setBuildingPreview,
                            &ContentViewPeer::setExporting}) {
        ContentViewPeer p = peer();
        (p.*set)(true);
        view().toggleWord(1);
        view().toggleWord(5);
        view().selectAllWords();
        view().selectNoWords();
        EXPECT_EQ(view().selectedWordIndices(), (std::set<int>{1, 2}));
        (p.*set)(false);
    }
}

TEST_F(WordSelectionOnScreen, theListOfWordsShowsTheChoice) {
    EXPECT_EQ(view().words()->rowCount(), 10);
    EXPECT_TRUE(rowIsSelected(7));
    view().toggleWord(7);
    EXPECT_FALSE(rowIsSelected(7));
    view().selectNoWords();
    EXPECT_FALSE(rowIsSelected(0));
    view().selectAllWords();
    EXPECT_TRUE(rowIsSelected(9));
}

TEST_F(WordSelectionOnScreen, theListIsToldWhichRowsChanged) {
    QSignalSpy changes(view().words(), &QAbstractItemModel::dataChanged);
    view().toggleWord(7);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0][0].value<QModelIndex>().row(), 7);
    EXPECT_EQ(changes[0][1].value<QModelIndex>().row(), 7);
    view().selectNoWords();
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes[1][0].value<QModelIndex>().row(), 0);
    EXPECT_EQ(changes[1][1].value<QModelIndex>().row(), 9);
}

TEST_F(WordSelectionOnScreen, choosingWhatIsChosenAnnouncesNothing) {
    record();
    view().selectAllWords();
    EXPECT_TRUE(log_.empty());
    view().selectNoWords();
    view().selectNoWords();
    EXPECT_EQ(log_, std::vector<std::string>{"selected 0"});
}

TEST_F(WordSelectionOnScreen, noObserverEverMeetsAnIndexWithoutAWord) {
    const auto look = [this] {
        if (!view().selectedWordIndices().empty()) {
            EXPECT_LT(*view().selectedWordIndices().rbegin(), static_cast<int>(view().segments().size()));
        }
        view().exportDurationText();
    };
    QObject::connect(&view(), &ContentView::segmentsChanged, &view(), look);
    QObject::connect(&view(), &ContentView::selectedWordIndicesChanged, &view(), look);
    QObject::connect(view().words(), &QAbstractItemModel::modelAboutToBeReset, &view(), look);
    QObject::connect(view().words(), &QAbstractItemModel::modelReset, &view(), look);
    peer().setWords(manyWords(3));
    peer().setWords({});
    peer().setWords(manyWords(20));
    EXPECT_EQ(view().selectedWordIndices(), upTo(20));
}

TEST_F(WordSelectionOnScreen, theTitleCountsTheWords) {
    EXPECT_EQ(view().wordsTitle().toStdString(), "Words — 10 tokens");
    peer().setWords(manyWords(1));
    EXPECT_EQ(view().wordsTitle().toStdString(), "Words — 1 token");
    EXPECT_EQ(view().exportSummary().toStdString(), "1 word · 1080 × 1920");
    peer().setWords({});
    EXPECT_EQ(view().wordsTitle().toStdString(), "Words");
    EXPECT_FALSE(view().hasWords());
}

using WordSelectionOnScreenDeathTest = WordSelectionOnScreen;

TEST_F(WordSelectionOnScreenDeathTest, anIndexWithoutAWordStopsTheProgram) {
    EXPECT_DEATH(view().toggleWord(10), "Fatal error: Index out of range");
    EXPECT_DEATH(view().toggleWord(-1), "Fatal error: Index out of range");
    peer().setSelectedUnchecked({3, 10});
    EXPECT_DEATH(view().selectedSegments(), "Fatal error: Index out of range");
    EXPECT_DEATH(view().selectedDuration(), "Fatal error: Index out of range");
}

}  // namespace
}  // namespace korvane
