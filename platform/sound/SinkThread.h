// The thread that a sound device lives on: the sound library wants an event loop and may wait for its server,
// neither of which a player's own threads have time for.
#pragma once

#include <QAudioDevice>
#include <QAudioFormat>
#include <QThread>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "platform/av/AudioOutput.h"

class QAudioSink;
class QIODevice;

namespace korvane {

/// Started once; ended by quit() and wait(). The functions below may be called from any one thread.
class SinkThread final : public QThread {
  public:
    SinkThread(QAudioDevice device, AudioFormat format);

    std::int64_t room();
    void write(std::span<const float> samples);
    void flush();
    HeardFrames heard();
    bool isDead() const { return dead_; }

  protected:
    void run() override;

  private:
    void pump(QAudioSink& sink);
    void restart(QAudioSink& sink);
    void feed(QAudioSink& sink);
    void report(const QAudioSink& sink);
    std::vector<char> bytesOf(std::span<const float> samples) const;

    QAudioDevice device_;
    AudioFormat format_;
    QAudioFormat sinkFormat_;
    std::atomic<bool> dead_ = false;

    std::mutex mutex_;
    std::vector<float> waiting_;
    std::int64_t written_ = 0;  ///< frames since the last flush
    std::int64_t flushes_ = 0;
    HeardFrames heard_;

    // On the thread.
    QIODevice* entry_ = nullptr;  ///< the sink's; null until there is something to play
    std::int64_t flushesDone_ = 0;
    std::int64_t given_ = 0;  ///< frames given to the sink since the last flush
    ClockTime lastNews_{0};   ///< when the sink last played on, or had nothing to play
};

}  // namespace korvane
