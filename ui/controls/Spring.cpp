#include "Spring.h"

#include <QAbstractAnimation>
#include <cmath>
#include <limits>

namespace korvane {

// The scene's animation clock: in step with the frames where the window has them.
class Spring::Clock : public QAbstractAnimation {
  public:
    explicit Clock(Spring& spring) : spring_(spring) {}

    int duration() const override { return -1; }

  protected:
    void updateCurrentTime(int ms) override { spring_.advance(ms); }

  private:
    Spring& spring_;
};

Spring::Spring(QObject* parent)
    : QObject(parent),
      from_(std::numeric_limits<qreal>::quiet_NaN()),
      clock_(std::make_unique<Clock>(*this)) {}

Spring::~Spring() = default;

void Spring::setTo(qreal to) {
    if (to == to_) {
        return;
    }
    const double velocity = moving_ ? now_.velocity : 0;
    to_ = to;
    if (complete_ && enabled_) {
        launch(velocity);
    } else if (complete_) {
        rest(to_);
    }
    Q_EMIT toChanged();
}

void Spring::setFrom(qreal from) {
    if (from == from_) {
        return;
    }
    from_ = from;
    Q_EMIT fromChanged();
}

void Spring::componentComplete() {
    complete_ = true;
    replay();
}

void Spring::jump(qreal value) {
    rest(value);
}

void Spring::replay() {
    rest(std::isnan(from_) || !enabled_ ? to_ : from_);
    launch(0);
}

void Spring::launch(double velocity) {
    clock_->stop();
    start_ = {value_ - to_, velocity};
    now_ = start_;
    if (SpringMotion(response_, damping_).isSettled(start_, tolerance_)) {
        rest(to_);
        return;
    }
    setMoving(true);
    clock_->start();
}

void Spring::advance(int ms) {
    const SpringMotion motion(response_, damping_);
    now_ = motion.after(start_, ms / 1000.0);
    if (motion.isSettled(now_, tolerance_)) {
        rest(to_);
        return;
    }
    publish(to_ + now_.position);
}

void Spring::rest(qreal at) {
    clock_->stop();
    now_ = {at - to_, 0};
    publish(at);
    setMoving(false);
}

void Spring::setMoving(bool moving) {
    if (moving == moving_) {
        return;
    }
    moving_ = moving;
    Q_EMIT movingChanged();
}

void Spring::publish(qreal value) {
    if (value == value_) {
        return;
    }
    value_ = value;
    Q_EMIT valueChanged();
}

}  // namespace korvane
