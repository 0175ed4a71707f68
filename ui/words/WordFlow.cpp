// Words, places and tokens. Pointer and keyboard are in WordFlowInput.cpp.
#include "ui/words/WordFlow.h"

#include <QDeadlineTimer>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlInfo>
#include <algorithm>

#include "ui/words/WordFlowLayout.h"
#include "ui/words/WordListModel.h"

namespace korvane {
namespace {

constexpr double kPadding = 2.0;
constexpr WordFlowLayout kLayout{.hSpacing = 5.0, .vSpacing = 6.0};
/// What one turn of the event loop may spend on words; both together leave most of a frame of 16.7 ms to
/// drawing.
constexpr int kMeasureMs = 2;
constexpr int kFillMs = 4;
/// Lines kept ready above and below what is seen, in points: a notch of the wheel finds them filled.
constexpr double kMargin = 90.0;
/// Tokens kept beyond those in use, so that lines of longer words don't throw away what the next ones need.
constexpr std::size_t kMostSpare = 64;

}  // namespace

WordFlow::WordFlow(QQuickItem* parent) : QQuickItem(parent) {
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
}

void WordFlow::setModel(QAbstractItemModel* model) {
    if (model_ == model)
        return;
    if (model_)
        model_->disconnect(this);
    model_ = model;
    if (model_) {
        connect(model_, &QAbstractItemModel::modelReset, this, &WordFlow::startOver);
        connect(model_, &QAbstractItemModel::rowsInserted, this, &WordFlow::startOver);
        connect(model_, &QAbstractItemModel::rowsRemoved, this, &WordFlow::startOver);
        connect(model_, &QAbstractItemModel::rowsMoved, this, &WordFlow::startOver);
        connect(model_, &QAbstractItemModel::layoutChanged, this, &WordFlow::startOver);
        connect(model_, &QObject::destroyed, this, &WordFlow::startOver);
        connect(model_, &QAbstractItemModel::dataChanged, this, &WordFlow::changed);
    }
    startOver();
    Q_EMIT modelChanged();
}

void WordFlow::setDelegate(QQmlComponent* delegate) {
    if (delegate_ == delegate)
        return;
    delegate_ = delegate;
    for (const auto& [index, token] : live_)
        delete token;
    live_.clear();
    for (WordTokenItem* token : spare_)
        delete token;
    spare_.clear();
    work();
    Q_EMIT delegateChanged();
}

void WordFlow::setViewportY(qreal y) {
    if (viewportY_ == y)
        return;
    viewportY_ = y;
    if (!scrollsItself_)
        keepAnchor();
    fill(QDeadlineTimer(kFillMs, Qt::PreciseTimer));
    Q_EMIT viewportChanged();
}

void WordFlow::setViewportHeight(qreal height) {
    if (viewportHeight_ == height)
        return;
    viewportHeight_ = height;
    fill(QDeadlineTimer(kFillMs, Qt::PreciseTimer));
    Q_EMIT viewportChanged();
}

QRectF WordFlow::currentRect() const {
    return 0 <= current_ && current_ < places_.count() ? places_.rect(current_) : QRectF();
}

WordTokenItem* WordFlow::tokenOf(int index) const {
    const auto found = live_.find(index);
    return found == live_.end() ? nullptr : found->second;
}

QString WordFlow::shownText(int index) const {
    return WordMetrics::shown(model_->index(index, 0).data(WordListModel::textRole).toString());
}

bool WordFlow::isSelected(int index) const {
    return model_->index(index, 0).data(WordListModel::selectedRole).toBool();
}

void WordFlow::componentComplete() {
    QQuickItem::componentComplete();
    work();
}

void WordFlow::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.width() == before.width())
        return;
    place();
    // The word that was the first in sight stays there; at the top, the top stays.
    if (viewportY_ > 0.0 && anchor_ < places_.count())
        requestScroll(places_.top(places_.lineOf(anchor_)) + anchorOffset_);
    work();
}

void WordFlow::timerEvent(QTimerEvent* event) {
    if (event->timerId() != work_.timerId()) {
        QQuickItem::timerEvent(event);
        return;
    }
    work();
}

bool WordFlow::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange) {
        metrics_.forget();
        startOver();
    }
    return QQuickItem::event(event);
}

void WordFlow::startOver() {
    sizes_.clear();
    places_ = {};
    anchor_ = 0;
    anchorOffset_ = 0.0;
    toReveal_ = -1;
    hovered_ = -1;
    pressed_ = -1;
    for (const auto& [index, token] : live_) {
        token->setCurrent(false);
        spare_.push_back(token);
    }
    live_.clear();
    current_ = count() > 0 ? 0 : -1;
    if (count() == 0)
        setFocus(false);  // the keyboard can't stay where nothing is
    setActiveFocusOnTab(count() > 0);
    place();
    requestScroll(0.0);
    goalX_ = -1.0;
    work();
    Q_EMIT currentChanged();
    Q_EMIT currentRectChanged();
    announceCurrent();
}

void WordFlow::changed(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
    if (roles.isEmpty() || roles.contains(WordListModel::textRole)) {
        startOver();
        return;
    }
    const auto end = live_.upper_bound(last.row());
    for (auto it = live_.lower_bound(first.row()); it != end; ++it)
        it->second->setSelected(isSelected(it->first));
}

void WordFlow::work() {
    if (!isComponentComplete())
        return;
    measure(QDeadlineTimer(kMeasureMs, Qt::PreciseTimer));
    fill(QDeadlineTimer(kFillMs, Qt::PreciseTimer));
}

void WordFlow::measure(const QDeadlineTimer& deadline) {
    const auto all = static_cast<std::size_t>(count());
    if (sizes_.size() == all && places_.count() == count())
        return;
    sizes_.reserve(all);
    while (sizes_.size() < all && (sizes_.empty() || !deadline.hasExpired()))
        sizes_.push_back(metrics_.tokenSize(shownText(static_cast<int>(sizes_.size()))));
    place();
    if (0 <= toReveal_ && toReveal_ < places_.count())
        reveal(toReveal_);
}

void WordFlow::place() {
    places_ =
        WordPlaces(kLayout, QRectF(kPadding, kPadding, std::max(0.0, width() - 2 * kPadding), 0), sizes_);
    // A word's place depends on those before it alone: the beginning is final while the rest is guessed.
    const double rest =
        sizes_.empty() ? 0.0 : static_cast<double>(count()) / static_cast<double>(sizes_.size());
    const double high = (places_.bottom() - kPadding) * rest;
    scrollsItself_ = true;
    setImplicitHeight(count() > 0 ? std::ceil(high + 2 * kPadding) : 0.0);
    scrollsItself_ = false;
    Q_EMIT currentRectChanged();
}

void WordFlow::fill(const QDeadlineTimer& deadline) {
    if (!isComponentComplete())
        return;
    const double bottom = viewportY_ + viewportHeight_;
    const bool seen = viewportHeight_ > 0.0 && delegate_;
    const auto inSight = seen ? places_.wordsBetween(viewportY_, bottom) : WordPlaces::Range{};
    const auto ready =
        seen ? places_.wordsBetween(viewportY_ - kMargin, bottom + kMargin) : WordPlaces::Range{};
    for (auto it = live_.begin(); it != live_.end();) {
        if (ready.contains(it->first)) {
            const QRectF& place = places_.rect(it->first);
            it->second->setPosition(place.topLeft());
            ++it;
            continue;
        }
        it->second->setCurrent(false);
        spare_.push_back(it->second);
        it = live_.erase(it);
    }
    const bool full = fill(inSight, deadline) && fill(ready, deadline);
    for (WordTokenItem* token : spare_)
        retire(*token);
    while (full && spare_.size() > kMostSpare) {
        spare_.back()->deleteLater();
        spare_.pop_back();
    }
    sortForReaders();
    updateCurrentToken();
    if (full && static_cast<int>(sizes_.size()) == count())
        work_.stop();
    else if (!work_.isActive())
        work_.start(0, this);
}

bool WordFlow::fill(const WordPlaces::Range& range, const QDeadlineTimer& deadline) {
    for (int i = range.first; i < range.end; ++i) {
        if (live_.contains(i))
            continue;
        if (deadline.hasExpired())
            return false;
        WordTokenItem* token = spare_.empty() ? create() : spare_.back();
        if (!token)
            return true;  // said by create(); another try would fail alike
        if (!spare_.empty())
            spare_.pop_back();
        bind(i, *token);
    }
    return true;
}

void WordFlow::bind(int index, WordTokenItem& token) {
    const QRectF& place = places_.rect(index);
    token.show(index, shownText(index), isSelected(index));
    token.setPosition(place.topLeft());
    token.setSize(place.size());
    token.setParentItem(this);
    token.setVisible(true);
    live_.emplace(index, &token);
}

WordTokenItem* WordFlow::create() {
    QQmlContext* made = delegate_->creationContext();
    QObject* object = delegate_->create(made ? made : qmlContext(this));
    auto* token = qobject_cast<WordTokenItem*>(object);
    if (!token) {
        qmlWarning(this, delegate_->errors()) << "the delegate does not make a token";
        delete object;
        return nullptr;
    }
    token->setParent(this);
    QQmlEngine::setObjectOwnership(token, QQmlEngine::CppOwnership);
    connect(token, &WordTokenItem::pressed, this, &WordFlow::toggle);
    return token;
}

/// Out of the picture, and out of what assistive technology walks through.
void WordFlow::retire(WordTokenItem& token) {
    token.setVisible(false);
    token.setParentItem(nullptr);
}

/// Reused tokens stand in the order of their making, but a screen reader reads children in stacking order.
void WordFlow::sortForReaders() {
    const WordTokenItem* before = nullptr;
    const QList<QQuickItem*> children = childItems();
    bool sorted = children.size() == static_cast<qsizetype>(live_.size());
    auto child = children.begin();
    for (auto it = live_.begin(); sorted && it != live_.end(); ++it, ++child)
        sorted = *child == it->second;
    if (sorted)
        return;
    for (const auto& [index, token] : live_) {
        if (before)
            token->stackAfter(before);
        before = token;
    }
}

void WordFlow::keepAnchor() {
    const int line = places_.lineBelow(viewportY_);
    anchor_ = line < 0 ? 0 : places_.wordsOf(line).first;
    anchorOffset_ = line < 0 ? 0.0 : viewportY_ - places_.top(line);
}

void WordFlow::requestScroll(double y) {
    scrollsItself_ = true;
    Q_EMIT scrollRequested(std::clamp(y, 0.0, std::max(0.0, implicitHeight() - viewportHeight_)));
    scrollsItself_ = false;
}

}  // namespace korvane
