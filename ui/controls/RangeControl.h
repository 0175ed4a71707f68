// What every slider does, without its looks: a value in a range, moved by pointer, wheel and keys in whole
// steps. Main thread.
//
// A binding on `value` stays bound while the person moves the slider; write it back in onMoved: (value) =>
// ... Values are exact: `from` plus a whole number of steps, never 71.99999.
#pragma once

#include <QtQml/qqmlregistration.h>

#include "KeyFocusItem.h"

namespace korvane {

class RangeControl : public korvane::KeyFocusItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal from READ from WRITE setFrom NOTIFY rangeChanged)
    Q_PROPERTY(qreal to READ to WRITE setTo NOTIFY rangeChanged)
    Q_PROPERTY(qreal stepSize MEMBER stepSize_ NOTIFY stepSizeChanged)
    Q_PROPERTY(qreal nudge MEMBER nudge_ NOTIFY nudgeChanged)
    Q_PROPERTY(qreal page MEMBER page_ NOTIFY pageChanged)
    Q_PROPERTY(qreal handle MEMBER handle_ NOTIFY handleChanged)
    Q_PROPERTY(Qt::Orientation orientation MEMBER orientation_ NOTIFY orientationChanged)
    Q_PROPERTY(qreal value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(qreal position READ position NOTIFY valueChanged)
    Q_PROPERTY(bool pressed READ isPressed NOTIFY pressedChanged)
    Q_PROPERTY(bool hovered READ isHovered NOTIFY hoveredChanged)
    // As assistive tools read them.
    Q_PROPERTY(qreal minimumValue READ from NOTIFY rangeChanged)
    Q_PROPERTY(qreal maximumValue READ to NOTIFY rangeChanged)

  public:
    explicit RangeControl(QQuickItem* parent = nullptr);

    qreal from() const { return from_; }
    void setFrom(qreal from);
    qreal to() const { return to_; }
    void setTo(qreal to);
    /// Always within the range. Set from outside it is taken as it is, on a step or not, unless it differs by
    /// no more than 1e-6: the slider's own echo must not move it under the pointer.
    qreal value() const;
    void setValue(qreal value);
    /// 0 at `from` (left, or bottom), 1 at `to`.
    qreal position() const;
    bool isPressed() const { return pressed_; }
    bool isHovered() const { return hovered_; }

    /// Moves by so many steps, as a key does.
    Q_INVOKABLE void stepBy(int steps);
    /// Moves to the step next to `value` within the range, as a pointer does. What is no number moves
    /// nothing.
    void moveTo(qreal value);

  Q_SIGNALS:
    void moved(qreal value);  ///< by the person, also during a drag; `value` has changed
    void rangeChanged();
    void stepSizeChanged();
    void nudgeChanged();
    void pageChanged();
    void handleChanged();
    void orientationChanged();
    void valueChanged();
    void pressedChanged();
    void hoveredChanged();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

  private:
    void dragTo(const QPointF& point);
    qreal snapped(qreal value) const;
    qreal step() const;
    qreal along(const QPointF& point) const;
    qreal travel() const;
    void setPressed(bool pressed);
    void setHovered(bool hovered);

    qreal from_ = 0;
    qreal to_ = 1;
    qreal stepSize_ = 0;  ///< 0: continuous
    qreal nudge_ = 0;     ///< a key's or wheel notch's step; 0: stepSize, or a hundredth of the range
    qreal page_ = 0;      ///< the step of Page keys, and of arrows with Shift; 0: a tenth of the range
    qreal handle_ = 16;   ///< the handle's length along the track, points
    Qt::Orientation orientation_ = Qt::Horizontal;
    qreal value_ = 0;
    bool pressed_ = false;
    bool hovered_ = false;
    qreal grip_ = 0;       ///< where on the handle it was taken, from its middle
    int wheelTurned_ = 0;  ///< eighths of a degree that did not make a step yet
};

}  // namespace korvane
