// The token area: lays every word of a model out in lines and keeps token items only for the lines that are
// seen, and a few more. Thousands of words are measured in slices of a few milliseconds, so the main thread
// stays free. It scrolls nothing itself: it is as high as its words, is told what part of it is seen, and
// asks for another part. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAbstractItemModel>
#include <QBasicTimer>
#include <QDeadlineTimer>
#include <QPointer>
#include <QQmlComponent>
#include <QQuickItem>
#include <map>
#include <vector>

#include "ui/words/WordMetrics.h"
#include "ui/words/WordPlaces.h"
#include "ui/words/WordTokenItem.h"

namespace korvane {

class WordFlow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Roles "text" and "selected".
    Q_PROPERTY(QAbstractItemModel* model READ model WRITE setModel NOTIFY modelChanged)
    /// Makes a WordTokenItem.
    Q_PROPERTY(QQmlComponent* delegate READ delegate WRITE setDelegate NOTIFY delegateChanged)
    /// Whether tokens react to pointer and keyboard; the looks are the same.
    Q_PROPERTY(bool reactive READ isReactive WRITE setReactive NOTIFY reactiveChanged)
    Q_PROPERTY(qreal viewportY READ viewportY WRITE setViewportY NOTIFY viewportChanged)
    Q_PROPERTY(qreal viewportHeight READ viewportHeight WRITE setViewportHeight NOTIFY viewportChanged)
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)  // -1 without words
    Q_PROPERTY(QRectF currentRect READ currentRect NOTIFY currentRectChanged)
    Q_PROPERTY(bool showsFocus READ showsFocus NOTIFY showsFocusChanged)  // focused, and by keyboard

  public:
    explicit WordFlow(QQuickItem* parent = nullptr);

    QAbstractItemModel* model() const { return model_; }
    void setModel(QAbstractItemModel* model);
    QQmlComponent* delegate() const { return delegate_; }
    void setDelegate(QQmlComponent* delegate);
    bool isReactive() const { return reactive_; }
    void setReactive(bool reactive);
    qreal viewportY() const { return viewportY_; }
    void setViewportY(qreal y);
    qreal viewportHeight() const { return viewportHeight_; }
    void setViewportHeight(qreal height);
    int currentIndex() const { return current_; }
    QRectF currentRect() const;
    bool showsFocus() const { return showsFocus_ && hasActiveFocus() && current_ >= 0; }

    /// The item that shows a word now, null when the word is out of sight.
    Q_INVOKABLE korvane::WordTokenItem* tokenOf(int index) const;
    /// Token items in existence.
    int poolSize() const { return static_cast<int>(live_.size() + spare_.size()); }
    /// Whether every word has its place and every place in sight its token.
    bool isSettled() const { return !work_.isActive(); }

  Q_SIGNALS:
    void modelChanged();
    void delegateChanged();
    void reactiveChanged();
    void viewportChanged();
    void currentChanged();
    void currentRectChanged();
    void showsFocusChanged();
    /// A word was clicked or pressed; whoever owns the selection changes it.
    void toggled(int index);
    /// The part that begins at y should be seen.
    void scrollRequested(qreal y);

  protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    int count() const { return model_ ? model_->rowCount() : 0; }
    QString shownText(int index) const;
    bool isSelected(int index) const;

    // Measuring, placing, filling with tokens.
    void startOver();
    void changed(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles);
    void work();
    void measure(const QDeadlineTimer& deadline);
    void place();
    void fill(const QDeadlineTimer& deadline);
    bool fill(const WordPlaces::Range& range, const QDeadlineTimer& deadline);
    void bind(int index, WordTokenItem& token);
    WordTokenItem* create();
    void retire(WordTokenItem& token);
    void sortForReaders();
    void keepAnchor();
    void requestScroll(double y);

    // Pointer and keyboard.
    void toggle(int index);
    void setCurrent(int index);
    void moveTo(int index);
    void moveLines(int by);
    int pageTarget(int direction) const;
    void reveal(int index);
    void setHovered(int index);
    void setPressed(int index);
    void setShowsFocus(bool shows);
    void updateCurrentToken();
    void announceCurrent();

    QPointer<QAbstractItemModel> model_;
    QPointer<QQmlComponent> delegate_;
    bool reactive_ = true;
    double viewportY_ = 0.0;
    double viewportHeight_ = 0.0;

    WordMetrics metrics_;
    std::vector<QSizeF> sizes_;  ///< of the words measured so far
    WordPlaces places_;          ///< of the same words
    std::map<int, WordTokenItem*> live_;
    std::vector<WordTokenItem*> spare_;
    QBasicTimer work_;

    int anchor_ = 0;             ///< the first word seen since the person last scrolled
    double anchorOffset_ = 0.0;  ///< how far its line's top lies above the viewport's
    bool scrollsItself_ = false;

    int current_ = -1;
    int toReveal_ = -1;    ///< a word to scroll to as soon as it has its place
    double goalX_ = -1.0;  ///< where a walk through lines began; negative when there is none
    int hovered_ = -1;
    int pressed_ = -1;
    bool showsFocus_ = false;
};

}  // namespace korvane
