// The line that is being said, over the picture that it is said in; as large as that picture. Drawn anew only
// when the line, its style or the size changes. Main thread.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickItem>
#include <QStringList>
#include <memory>

#include "ui/player/SubtitlePicture.h"

namespace korvane {

class SubtitleOverlay : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// All lines of the reel, in any order; they tell Chinese from Japanese.
    Q_PROPERTY(QList<QString> reelTexts READ reelTexts WRITE setReelTexts NOTIFY reelTextsChanged)
    // The style, in units of the exported picture.
    Q_PROPERTY(
        QString fontPostscriptName READ fontPostscriptName WRITE setFontPostscriptName NOTIFY styleChanged)
    Q_PROPERTY(qreal fontSize READ fontSize WRITE setFontSize NOTIFY styleChanged)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY styleChanged)
    Q_PROPERTY(bool hasShadow READ hasShadow WRITE setHasShadow NOTIFY styleChanged)
    Q_PROPERTY(qreal verticalPosition READ verticalPosition WRITE setVerticalPosition NOTIFY styleChanged)
    /// Of the picture's corners, in points; nothing of the line is seen beyond them.
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)
    /// What the item is scaled by, from `center`.
    Q_PROPERTY(qreal shownScale READ shownScale WRITE setShownScale NOTIFY shownScaleChanged)
    /// The middle of the line, in points: what it grows from.
    Q_PROPERTY(QPointF center READ center NOTIFY centerChanged)
    /// What stands on each line since the last drawing.
    Q_PROPERTY(QList<QString> lines READ lines NOTIFY linesChanged)

  public:
    /// `smooth` is false at first: pixels fall on pixels. Set it while the item is scaled.
    explicit SubtitleOverlay(QQuickItem* parent = nullptr);
    ~SubtitleOverlay() override;

    const QString& text() const { return text_; }
    void setText(const QString& text);
    const QStringList& reelTexts() const { return reelTexts_; }
    void setReelTexts(const QStringList& texts);
    QString fontPostscriptName() const { return QString::fromStdString(settings_.fontPostscriptName); }
    void setFontPostscriptName(const QString& name);
    qreal fontSize() const { return settings_.fontSize; }
    void setFontSize(qreal size);
    QColor textColor() const;
    void setTextColor(const QColor& color);
    bool hasShadow() const { return settings_.hasShadow; }
    void setHasShadow(bool on);
    qreal verticalPosition() const { return settings_.verticalPosition; }
    void setVerticalPosition(qreal fraction);
    qreal radius() const { return radius_; }
    void setRadius(qreal radius);
    qreal shownScale() const { return shownScale_; }
    void setShownScale(qreal scale);
    QPointF center() const;
    const QStringList& lines() const { return picture_.lines; }

  Q_SIGNALS:
    void textChanged();
    void reelTextsChanged();
    void styleChanged();
    void radiusChanged();
    void shownScaleChanged();
    void centerChanged();
    void linesChanged();

  protected:
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

  private:
    template <class Value>
    void change(Value SubtitleSettings::*field, const Value& value);
    void redraw();
    void chooseEastAsianFamily();

    QString text_;
    QStringList reelTexts_;
    SubtitleSettings settings_;
    std::unique_ptr<SubtitlePainter> painter_;  ///< since the item was first seen
    SubtitlePicture picture_;
    qreal radius_ = 0;
    qreal shownScale_ = 1;
    bool redrawn_ = false;  ///< the node has another picture than `picture_`
    QImage shownImage_;     ///< what the node has
};

}  // namespace korvane
