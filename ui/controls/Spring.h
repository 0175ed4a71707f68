// A number that follows its target like a damped spring, for QML. Main thread; moves with the scene's own
// clock.
//
//     Spring { id: spring; to: button.pressed ? 0.96 : 1; response: 0.18; damping: 0.75 }
//     scale: spring.value
//
// A new target keeps place and speed, so that a change in mid-flight has no kink. At rest `value` is exactly
// `to`.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QQmlParserStatus>
#include <memory>

#include "SpringMotion.h"

namespace korvane {

class Spring : public QObject, public QQmlParserStatus {
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(qreal to READ to WRITE setTo NOTIFY toChanged)
    Q_PROPERTY(qreal from READ from WRITE setFrom NOTIFY fromChanged)
    Q_PROPERTY(qreal response MEMBER response_ NOTIFY responseChanged)
    Q_PROPERTY(qreal damping MEMBER damping_ NOTIFY dampingChanged)
    Q_PROPERTY(qreal tolerance MEMBER tolerance_ NOTIFY toleranceChanged)
    Q_PROPERTY(bool enabled MEMBER enabled_ NOTIFY enabledChanged)
    Q_PROPERTY(qreal value READ value NOTIFY valueChanged)
    Q_PROPERTY(bool moving READ isMoving NOTIFY movingChanged)

  public:
    explicit Spring(QObject* parent = nullptr);
    ~Spring() override;

    qreal to() const { return to_; }
    void setTo(qreal to);
    /// Where a new spring starts; not set, it starts at rest at its target.
    qreal from() const { return from_; }
    void setFrom(qreal from);
    qreal value() const { return value_; }
    bool isMoving() const { return moving_; }

    /// Goes to `value` at once and rests there until `to` changes.
    Q_INVOKABLE void jump(qreal value);
    /// Starts again at `from` towards `to`.
    Q_INVOKABLE void replay();

    void classBegin() override {}
    void componentComplete() override;

  Q_SIGNALS:
    void toChanged();
    void fromChanged();
    void responseChanged();
    void dampingChanged();
    void toleranceChanged();
    void enabledChanged();
    void valueChanged();
    void movingChanged();

  private:
    class Clock;

    void launch(double velocity);
    void advance(int ms);
    void rest(qreal at);
    void setMoving(bool moving);
    void publish(qreal value);

    qreal to_ = 0;
    qreal from_;
    qreal response_ = 0.35;
    qreal damping_ = 0.75;
    qreal tolerance_ = 0.0005;  ///< in the unit of `value`: nearer than this it rests
    qreal value_ = 0;
    bool enabled_ = true;  ///< false: `value` follows `to` at once
    bool complete_ = false;
    bool moving_ = false;
    std::unique_ptr<Clock> clock_;
    SpringMotion::State start_{0, 0};
    SpringMotion::State now_{0, 0};
};

}  // namespace korvane
