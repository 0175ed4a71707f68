// A transcript in a window, with a selection that follows the clicks as the screen's own does.
#pragma once

#include <QImage>
#include <QQuickView>
#include <QTest>
#include <set>
#include <string>
#include <vector>

#include "ui/words/WordFlow.h"
#include "ui/words/WordListModel.h"

namespace korvane::test {

/// `count` words of uneven length, each saying its index.
std::vector<SpeechSegment> numberedWords(int count);
std::vector<SpeechSegment> segments(const std::vector<std::string>& words);

class ShownWords {
  public:
    enum class Part { area, card };

    explicit ShownWords(std::vector<SpeechSegment> words, QSize size = {400, 300}, Part part = Part::area);

    /// Other words, all selected, as after another transcription.
    void replace(std::vector<SpeechSegment> words);
    void select(std::set<int> selected);
    void resize(QSize size);
    /// Waits until every word has its place and the window has drawn it.
    void settle();

    WordFlow& flow() { return *flow_; }
    QQuickItem& area() { return *area_; }
    QQuickItem& item(const char* objectName);
    double scrollY() const { return area_->property("contentY").toDouble(); }
    void scrollTo(double y);
    double furthest() const;

    QPoint middleOf(int index);
    QRectF inWindow(int index);
    void click(int index);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    QImage picture();

    std::vector<SpeechSegment> words;
    std::set<int> selected;
    WordListModel model{words, selected};
    std::vector<int> toggled;

    QQuickView view;

  private:
    WordFlow* flow_ = nullptr;
    QQuickItem* area_ = nullptr;
};

}  // namespace korvane::test
