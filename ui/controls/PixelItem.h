// Base of what we draw ourselves: a picture at the screen's own pixels, made when its looks change and kept
// as a texture. Works with and without a graphics processor. Items live on the main thread; pictures are made
// on the rendering thread while the main thread waits.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QByteArray>
#include <QImage>
#include <QQuickItem>
#include <QSize>

namespace korvane {

// Derive from it as korvane::PixelItem, with its namespace: the list of types that the checker of QML reads
// names it as it is written.
class PixelItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    /// `smooth` is false at first: pixels fall on pixels. Set it while the item is scaled.
    explicit PixelItem(QQuickItem* parent = nullptr);

  protected:
    /// \param size   pixels of the screen; not empty.
    /// \param ratio  pixels for each point.
    /// \return of that size, premultiplied.
    virtual QImage picture(const QSize& size, qreal ratio) const = 0;
    /// The size of the picture for an item of `pixels`. A narrower one is stretched in its middle column.
    virtual QSize pictureSize(const QSize& pixels, qreal ratio) const;
    /// Items of one key and size in one window share one texture. Empty: not shared.
    virtual QByteArray pictureKey() const;

    /// To be called when the looks changed.
    void repaint();

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

  private:
    bool stale_ = true;
};

}  // namespace korvane
