// Owns a file descriptor.
#pragma once

#include <unistd.h>

namespace korvane::cli {

/// Closes at its end; a negative number owns nothing.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return number_; }

  private:
    int number_;
};

}  // namespace korvane::cli
