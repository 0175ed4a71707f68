#include "ui/player/SubtitleOverlay.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>
#include <cmath>

#include "platform/layers/EastAsianText.h"

namespace korvane {
namespace {

/// A row or column must never be sampled exactly between two pixels, where rounding would decide.
constexpr qreal kOffTheEdge = 1.0 / 16;

/// The line as the scene graph has it. Lives on the rendering thread.
class LineNode : public QSGNode {
  public:
    explicit LineNode(QQuickWindow& window) : node_(window.createImageNode()) {
        node_->setOwnsTexture(false);
        node_->setFlag(OwnedByParent);
    }

    void show(std::unique_ptr<QSGTexture> texture) {
        node_->setTexture(texture.get());
        // Joins the scene with its texture: the software renderer looks at the textures of what is added.
        if (!node_->parent())
            appendChildNode(node_);
        texture_ = std::move(texture);  // after the node let go of the one before
    }

    void place(const QRectF& rect, QSGTexture::Filtering filtering) {
        node_->setSourceRect(QRectF(QPointF(), QSizeF(texture_->textureSize())));
        node_->setRect(rect);
        node_->setFiltering(filtering);
    }

  private:
    QSGImageNode* node_;
    std::unique_ptr<QSGTexture> texture_;
};

}  // namespace

SubtitleOverlay::SubtitleOverlay(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setSmooth(false);
}

SubtitleOverlay::~SubtitleOverlay() = default;

void SubtitleOverlay::setText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    chooseEastAsianFamily();
    redraw();
    Q_EMIT textChanged();
}

void SubtitleOverlay::setReelTexts(const QStringList& texts) {
    if (texts == reelTexts_)
        return;
    reelTexts_ = texts;
    chooseEastAsianFamily();
    redraw();
    Q_EMIT reelTextsChanged();
}

template <class Value>
void SubtitleOverlay::change(Value SubtitleSettings::*field, const Value& value) {
    if (settings_.*field == value)
        return;
    const QPointF before = center();
    settings_.*field = value;
    redraw();
    Q_EMIT styleChanged();
    if (center() != before)
        Q_EMIT centerChanged();
}

void SubtitleOverlay::setFontPostscriptName(const QString& name) {
    change(&SubtitleSettings::fontPostscriptName, name.toStdString());
}

void SubtitleOverlay::setFontSize(qreal size) {
    change(&SubtitleSettings::fontSize, size);
}

QColor SubtitleOverlay::textColor() const {
    const Color color = settings_.textColor();
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue));
}

void SubtitleOverlay::setTextColor(const QColor& color) {
    if (color == textColor())
        return;
    settings_.setTextColor({color.redF(), color.greenF(), color.blueF(), 1.0});
    redraw();
    Q_EMIT styleChanged();
}

void SubtitleOverlay::setHasShadow(bool on) {
    change(&SubtitleSettings::hasShadow, on);
}

void SubtitleOverlay::setVerticalPosition(qreal fraction) {
    change(&SubtitleSettings::verticalPosition, fraction);
}

void SubtitleOverlay::setRadius(qreal radius) {
    if (radius == radius_)
        return;
    radius_ = radius;
    update();
    Q_EMIT radiusChanged();
}

void SubtitleOverlay::setShownScale(qreal scale) {
    if (scale == shownScale_)
        return;
    shownScale_ = scale;
    update();
    Q_EMIT shownScaleChanged();
}

QPointF SubtitleOverlay::center() const {
    return subtitleCenter(size(), settings_);
}

void SubtitleOverlay::chooseEastAsianFamily() {
    if (!painter_)
        return;
    EastAsianText texts;
    for (const QString& text : reelTexts_)
        texts.add(text.toStdString());
    texts.add(text_.toStdString());
    painter_->setEastAsianLanguage(texts.language());
}

void SubtitleOverlay::redraw() {
    polish();
}

void SubtitleOverlay::updatePolish() {
    if (!isVisible() || !window())
        return;
    // Here, so that what is not seen yet costs nothing, and the first line doesn't wait for it.
    if (!painter_) {
        painter_ = std::make_unique<SubtitlePainter>();
        chooseEastAsianFamily();
    }
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize pixels(qRound(width() * ratio), qRound(height() * ratio));
    const QStringList before = picture_.lines;
    picture_ = painter_->draw(text_, settings_, pixels, ratio);
    redrawn_ = true;
    update();
    if (picture_.lines != before)
        Q_EMIT linesChanged();
}

void SubtitleOverlay::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    update();
    if (now.size() == before.size())
        return;
    redraw();
    Q_EMIT centerChanged();
}

void SubtitleOverlay::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemVisibleHasChanged || change == ItemDevicePixelRatioHasChanged ||
        change == ItemSceneChange)
        redraw();
}

QSGNode* SubtitleOverlay::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<LineNode*>(old);
    if (picture_.image.isNull()) {
        delete node;
        return nullptr;
    }
    const bool fresh = !node;
    if (fresh)
        node = new LineNode(*window());
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QImage image =
        withinRoundFrame(picture_, (size() * ratio).toSize(), radius_ * ratio, shownScale_, center() * ratio);
    if (fresh || redrawn_ || image.cacheKey() != shownImage_.cacheKey())
        node->show(std::unique_ptr<QSGTexture>(
            window()->createTextureFromImage(image, QQuickWindow::TextureHasAlphaChannel)));
    shownImage_ = image;
    redrawn_ = false;

    // Where the item stands while nothing scales it.
    const QPointF onScreen = (parentItem() ? parentItem()->mapToScene(position()) : position()) * ratio;
    const QPointF shift(std::round(onScreen.x()) - onScreen.x() + kOffTheEdge,
                        std::round(onScreen.y()) - onScreen.y() + kOffTheEdge);
    node->place(QRectF((shift + picture_.topLeft) / ratio, QSizeF(picture_.image.size()) / ratio),
                smooth() ? QSGTexture::Linear : QSGTexture::Nearest);
    return node;
}

}  // namespace korvane
