#include "platform/sound/QtAudioOutputFactory.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/sound/SinkThread.h"

namespace korvane {
namespace {

/// A device as a player sees it. What is written waits here until the device's thread takes it.
class QtAudioOutput final : public AudioOutput {
  public:
    QtAudioOutput(const QAudioDevice& device, AudioFormat format) : thread_(device, format) {
        thread_.start(QThread::TimeCriticalPriority);
    }
    ~QtAudioOutput() override {
        thread_.quit();
        thread_.wait();
    }

    std::int64_t room() override { return thread_.room(); }
    void write(std::span<const float> samples) override { thread_.write(samples); }
    void flush() override { thread_.flush(); }
    HeardFrames heard() override { return thread_.heard(); }
    bool isDead() override { return thread_.isDead(); }

  private:
    SinkThread thread_;
};

}  // namespace

struct QtAudioOutputFactory::Devices {
    QMediaDevices list;
    std::mutex mutex;  // also held while observers are called, so that who leaves knows that none runs
    QAudioDevice current;
    std::vector<std::pair<const void*, std::function<void()>>> observers;

    /// Main thread.
    void look() {
        const QAudioDevice now = QMediaDevices::defaultAudioOutput();
        const std::scoped_lock lock(mutex);
        const bool same = now.isNull() == current.isNull() && now.id() == current.id();
        current = now;
        if (same)
            return;
        for (const auto& [token, changed] : observers)
            changed();
    }
};

QtAudioOutputFactory::QtAudioOutputFactory() : devices_(std::make_shared<Devices>()) {
    devices_->current = QMediaDevices::defaultAudioOutput();
    QObject::connect(&devices_->list, &QMediaDevices::audioOutputsChanged, &devices_->list,
                     [devices = devices_.get()] { devices->look(); });
}

QtAudioOutputFactory::~QtAudioOutputFactory() = default;

std::unique_ptr<AudioOutput> QtAudioOutputFactory::open(AudioFormat format) {
    QAudioDevice device;
    {
        const std::scoped_lock lock(devices_->mutex);
        device = devices_->current;
    }
    if (device.isNull())
        return nullptr;
    return std::make_unique<QtAudioOutput>(device, format);
}

std::shared_ptr<void> QtAudioOutputFactory::observeDevices(std::function<void()> changed) {
    auto token = std::make_shared<char>();
    const void* const key = token.get();
    {
        const std::scoped_lock lock(devices_->mutex);
        devices_->observers.emplace_back(key, std::move(changed));
    }
    // The list stays as long as anyone is on it.
    return {token.get(), [token, devices = devices_, key](const void*) {
                const std::scoped_lock lock(devices->mutex);
                std::erase_if(devices->observers, [key](const auto& o) { return o.first == key; });
            }};
}

}  // namespace korvane
