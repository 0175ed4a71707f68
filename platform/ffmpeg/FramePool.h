// Recycled picture buffers: a new picture costs no fresh pages.
#pragma once

#include <memory>

struct AVFrame;
struct AVBufferPool;

namespace korvane {

/// Pictures of one size, planar YUV 4:2:0, 8 bit, rows aligned to 64 bytes. Not thread-safe to take from; the
/// pictures may be let go on any thread, also after the pool is gone.
class FramePool {
  public:
    FramePool(int width, int height);
    ~FramePool();
    FramePool(const FramePool&) = delete;
    FramePool& operator=(const FramePool&) = delete;

    /// A writable picture with undefined content, tagged BT.709, limited range, left chroma.
    /// \throws std::bad_alloc
    std::shared_ptr<AVFrame> take();

  private:
    int width_;
    int height_;
    AVBufferPool* pool_;
};

}  // namespace korvane
