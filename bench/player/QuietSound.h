// A sound server of the benchmarks' own, whose one device nobody hears; the machine's own is left alone.
#pragma once

#include <memory>
#include <string>

namespace korvane {
class PrivateSoundServer;
}

namespace korvane::bench {

/// While it stands, programs that are started find its device and no other. Without the server's program they
/// find what the machine has.
class QuietSound {
  public:
    QuietSound();
    ~QuietSound();
    QuietSound(const QuietSound&) = delete;
    QuietSound& operator=(const QuietSound&) = delete;

    bool isRunning() const { return server_ != nullptr; }

  private:
    std::unique_ptr<PrivateSoundServer> server_;
};

}  // namespace korvane::bench
