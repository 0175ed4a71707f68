#include "PixelItem.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGNode>
#include <QSGTexture>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <tuple>

namespace korvane {

namespace {

// A column or row of the grid must never be sampled exactly between two pixels, where rounding would decide.
constexpr qreal offTheEdge = 1.0 / 16;

using Texture = std::shared_ptr<QSGTexture>;
using TextureKey = std::tuple<const QQuickWindow*, QByteArray, int, int>;

// Textures in use, by looks: hundreds of equal tokens keep one. Textures belong to the thread that renders
// them.
std::weak_ptr<QSGTexture>& sharedTexture(const TextureKey& key) {
    thread_local std::map<TextureKey, std::weak_ptr<QSGTexture>> textures;
    if (textures.size() > 256) {
        std::erase_if(textures, [](const auto& entry) { return entry.second.expired(); });
    }
    return textures[key];
}

// One image, or three side by side: left end, stretched middle, right end.
class PixelNode : public QSGNode {
  public:
    explicit PixelNode(QQuickWindow* window) : window_(window) {}

    void show(const Texture& texture, int columns) {
        while (childCount() > columns) {
            QSGNode* last = lastChild();
            removeChildNode(last);
            delete last;
        }
        while (childCount() < columns) {
            auto* slice = window_->createImageNode();
            slice->setOwnsTexture(false);
            slice->setFlag(OwnedByParent);
            // Before it joins the scene: the software renderer looks at the textures of what is added.
            slice->setTexture(texture.get());
            appendChildNode(slice);
        }
        for (QSGNode* slice = firstChild(); slice != nullptr; slice = slice->nextSibling()) {
            static_cast<QSGImageNode*>(slice)->setTexture(texture.get());
        }
        texture_ = texture;  // after the nodes let go of the one before
    }

    // `pixels` of the screen at `rect`, with the texture's middle column stretched.
    void place(const QRectF& rect, const QSize& pixels, QSGTexture::Filtering filtering) {
        const QSize size = texture_->textureSize();
        const int count = childCount();
        const int end = count == 1 ? 0 : size.width() / 2;
        const qreal point = rect.width() / pixels.width();
        const std::array<QRectF, 3> sources{QRectF(0, 0, end, size.height()),
                                            QRectF(end, 0, size.width() - 2 * end, size.height()),
                                            QRectF(size.width() - end, 0, end, size.height())};
        const std::array<QRectF, 3> targets{
            QRectF(rect.left(), rect.top(), end * point, rect.height()),
            QRectF(rect.left() + end * point, rect.top(), rect.width() - 2 * end * point, rect.height()),
            QRectF(rect.right() - end * point, rect.top(), end * point, rect.height())};
        int index = count == 1 ? 1 : 0;
        for (QSGNode* child = firstChild(); child != nullptr; child = child->nextSibling(), ++index) {
            auto* slice = static_cast<QSGImageNode*>(child);
            slice->setSourceRect(sources.at(index));
            slice->setRect(targets.at(index));
            slice->setFiltering(filtering);
        }
    }

  private:
    QQuickWindow* window_;
    Texture texture_;
};

}  // namespace

PixelItem::PixelItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setSmooth(false);
}

QSize PixelItem::pictureSize(const QSize& pixels, qreal) const {
    return pixels;
}

QByteArray PixelItem::pictureKey() const {
    return {};
}

void PixelItem::repaint() {
    stale_ = true;
    update();
}

void PixelItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) {
        repaint();
    } else {
        update();
    }
}

void PixelItem::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        repaint();
    }
}

QSGNode* PixelItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize pixels(qRound(width() * ratio), qRound(height() * ratio));
    if (pixels.isEmpty()) {
        delete old;
        stale_ = true;
        return nullptr;
    }
    auto* node = static_cast<PixelNode*>(old);
    if (node == nullptr) {
        node = new PixelNode(window());
        stale_ = true;
    }
    if (stale_) {
        stale_ = false;
        const QSize size = pictureSize(pixels, ratio);
        const QByteArray look = pictureKey();
        const auto made = [&] {
            const QImage image = picture(size, ratio);
            return Texture(window()->createTextureFromImage(image, image.hasAlphaChannel()
                                                                       ? QQuickWindow::TextureHasAlphaChannel
                                                                       : QQuickWindow::TextureIsOpaque));
        };
        Texture texture;
        if (look.isEmpty()) {
            texture = made();
        } else {
            const QByteArray key = look + '@' + QByteArray::number(ratio);
            auto& shared = sharedTexture({window(), key, size.width(), size.height()});
            texture = shared.lock();
            if (!texture) {
                texture = made();
                shared = texture;
            }
        }
        node->show(texture, size.width() < pixels.width() ? 3 : 1);
    }
    const QPointF onScreen = mapToScene(QPointF()) * ratio;
    const QPointF shift(std::round(onScreen.x()) - onScreen.x() + offTheEdge,
                        std::round(onScreen.y()) - onScreen.y() + offTheEdge);
    node->place(QRectF(shift / ratio, QSizeF(pixels) / ratio), pixels,
                smooth() ? QSGTexture::Linear : QSGTexture::Nearest);
    return node;
}

}  // namespace korvane
