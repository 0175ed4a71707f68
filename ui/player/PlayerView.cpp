#include "ui/player/PlayerView.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

#include "ui/player/FrameImage.h"
#include "ui/player/FrameMailbox.h"

namespace korvane {
namespace {

static_assert(std::endian::native == std::endian::little,
              "blue comes first in a display picture and in a QRgb");

/// A row or column must never be sampled exactly between two pixels, where rounding would decide.
constexpr qreal kOffTheEdge = 1.0 / 16;

/// Where a picture stands in an area, both in the screen's pixels. One that misses the area by the rounding
/// of a side alone keeps its own pixels.
QRectF fitted(const QSize& picture, const QSize& area) {
    QSize size = picture.scaled(area, Qt::KeepAspectRatio);
    if (std::abs(size.width() - picture.width()) <= 1 && std::abs(size.height() - picture.height()) <= 1)
        size = picture;
    return {QPointF((area.width() - size.width()) / 2, (area.height() - size.height()) / 2), QSizeF(size)};
}

/// The picture as the scene graph has it. Lives on the rendering thread.
class PictureNode : public QSGNode {
  public:
    explicit PictureNode(QQuickWindow& window) : window_(window) {}

    const std::shared_ptr<const DisplayPicture>& picture() const { return picture_; }

    void show(const std::shared_ptr<const DisplayPicture>& picture, double radius) {
        if (picture == picture_ && radius == radius_)
            return;
        picture_ = picture;
        radius_ = radius;
        std::unique_ptr<QSGTexture> texture(window_.createTextureFromImage(
            image_.made(*picture, radius),
            radius > 0.0 ? QQuickWindow::TextureHasAlphaChannel : QQuickWindow::TextureIsOpaque));
        if (!node_) {
            node_ = window_.createImageNode();
            node_->setOwnsTexture(false);
            node_->setFlag(OwnedByParent);
            // Before it joins the scene: the software renderer looks at the textures of what is added.
            node_->setTexture(texture.get());
            appendChildNode(node_);
        }
        node_->setTexture(texture.get());
        texture_ = std::move(texture);  // after the node let go of the one before
    }

    /// \param rect  in the item's points.
    void place(const QRectF& rect, bool pixelForPixel) {
        node_->setSourceRect(QRectF(QPointF(), QSizeF(texture_->textureSize())));
        node_->setRect(rect);
        node_->setFiltering(pixelForPixel ? QSGTexture::Nearest : QSGTexture::Linear);
    }

  private:
    QQuickWindow& window_;
    QSGImageNode* node_ = nullptr;
    std::unique_ptr<QSGTexture> texture_;
    FrameImage image_;
    std::shared_ptr<const DisplayPicture> picture_;
    double radius_ = 0.0;
};

}  // namespace

PlayerView::PlayerView(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

PlayerView::~PlayerView() {
    disconnectPlayer();
}

void PlayerView::setSource(PreviewSource* source) {
    if (source == source_)
        return;
    disconnectPlayer();
    if (source_)
        disconnect(source_, nullptr, this, nullptr);
    source_ = source;
    if (source_) {
        connect(source_, &PreviewSource::sourceChanged, this, &PlayerView::connectPlayer);
        connect(source_, &QObject::destroyed, this, &PlayerView::connectPlayer);
    }
    connectPlayer();
    Q_EMIT sourceChanged();
}

void PlayerView::setRadius(qreal radius) {
    if (radius == radius_)
        return;
    radius_ = radius;
    update();
    Q_EMIT radiusChanged();
}

void PlayerView::connectPlayer() {
    if (mailbox_)
        mailbox_->close();
    mailbox_.reset();
    askedSize_ = QSize();
    shown_.reset();
    setHasPicture(false);
    update();
    if (!source_)
        return;
    const auto arrived = [this, player = ++player_] {
        if (player != player_)
            return;
        setHasPicture(true);
        update();
    };
    mailbox_ = std::make_shared<FrameMailbox>(
        [this, arrived] { QMetaObject::invokeMethod(this, arrived, Qt::QueuedConnection); });
    askForSize();
    source_->setFrameConsumer(mailbox_);
}

void PlayerView::disconnectPlayer() {
    if (mailbox_)
        mailbox_->close();
    mailbox_.reset();
    if (source_)
        source_->setFrameConsumer(nullptr);
}

void PlayerView::setHasPicture(bool hasPicture) {
    if (hasPicture == hasPicture_)
        return;
    hasPicture_ = hasPicture;
    Q_EMIT hasPictureChanged();
}

QSize PlayerView::pixels() const {
    if (!window())
        return {};
    const qreal ratio = window()->effectiveDevicePixelRatio();
    return {qRound(width() * ratio), qRound(height() * ratio)};
}

void PlayerView::askForSize() {
    const QSize size = pixels();
    if (!source_ || size.isEmpty() || size == askedSize_)
        return;
    askedSize_ = size;
    source_->setFrameSize(size.width(), size.height());
}

void PlayerView::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    askForSize();
    update();
}

void PlayerView::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change != ItemDevicePixelRatioHasChanged && change != ItemSceneChange)
        return;
    askForSize();
    update();
}

QSGNode* PlayerView::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<PictureNode*>(old);
    if (auto newest = mailbox_ ? mailbox_->take() : nullptr) {
        shown_ = std::move(newest);
        ++drawnPictures_;
    }
    const auto& picture = shown_;
    const QSize area = pixels();
    if (!picture || area.isEmpty()) {
        delete node;
        return nullptr;
    }
    if (!node)
        node = new PictureNode(*window());

    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize size(picture->width, picture->height);
    const QRectF place = fitted(size, area);
    node->show(picture, radius_ * ratio * size.width() / place.width());

    const QPointF onScreen = mapToScene(QPointF()) * ratio;
    const QPointF corner(std::round(onScreen.x()) - onScreen.x() + kOffTheEdge + place.x(),
                         std::round(onScreen.y()) - onScreen.y() + kOffTheEdge + place.y());
    node->place(QRectF(corner / ratio, place.size() / ratio), place.size() == QSizeF(size));
    return node;
}

}  // namespace korvane
