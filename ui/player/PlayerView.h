// Shows what is played, without any controls: the newest picture, fitted into the item, its corners round.
// Pictures are asked for at the screen's own pixels, so that they are shown as they come. Draws with and
// without a graphics processor. Main thread; pictures come in on the player's.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPointer>
#include <QQuickItem>
#include <QSize>
#include <atomic>
#include <cstdint>
#include <memory>

#include "ui/player/PreviewSource.h"

namespace korvane {

class FrameMailbox;

class PlayerView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(korvane::PreviewSource* source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(bool hasPicture READ hasPicture NOTIFY hasPictureChanged)

  public:
    explicit PlayerView(QQuickItem* parent = nullptr);
    ~PlayerView() override;

    /// Where the pictures come from; may be null, and may go before the view.
    PreviewSource* source() const { return source_; }
    void setSource(PreviewSource* source);
    /// Of the picture's corners, in points.
    qreal radius() const { return radius_; }
    void setRadius(qreal radius);
    /// Whether the player that there is now has shown anything yet. Until then the item is empty.
    bool hasPicture() const { return hasPicture_; }
    /// How many pictures went into the scene since the item was made: one that is overtaken by the next
    /// before the window draws is not among them.
    std::int64_t drawnPictures() const { return drawnPictures_; }

  Q_SIGNALS:
    void sourceChanged();
    void radiusChanged();
    void hasPictureChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

  private:
    void connectPlayer();
    void disconnectPlayer();
    void askForSize();
    void setHasPicture(bool hasPicture);
    QSize pixels() const;

    QPointer<PreviewSource> source_;
    std::shared_ptr<FrameMailbox> mailbox_;
    int player_ = 0;   ///< counts them, to know what comes late from one before
    QSize askedSize_;  ///< of the player that there is now
    qreal radius_ = 0;
    bool hasPicture_ = false;
    std::atomic<std::int64_t> drawnPictures_ = 0;  ///< counted on the thread that draws
    std::shared_ptr<const DisplayPicture> shown_;
};

}  // namespace korvane
