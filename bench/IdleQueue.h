// A main queue whose owner never looks: progress is reported at its full cost, and shown to nobody.
#pragma once

#include "platform/tasks/MainQueue.h"

namespace korvane::bench {

class IdleQueue final : public MainQueue {
  public:
    void post(std::function<void()>) override {}
};

}  // namespace korvane::bench
