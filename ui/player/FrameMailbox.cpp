#include "ui/player/FrameMailbox.h"

namespace korvane {

void FrameMailbox::show(const PlayerFrame& frame) {
    if (!frame.picture || frame.picture->width <= 0 || frame.picture->height <= 0)
        return;
    const std::scoped_lock lock(mutex_);
    if (!arrived_)
        return;
    const bool taken = !newest_;
    newest_ = frame.picture;
    // Under the lock, so that close() can promise that nothing comes after it.
    if (taken)
        arrived_();
}

std::shared_ptr<const DisplayPicture> FrameMailbox::take() {
    const std::scoped_lock lock(mutex_);
    return std::move(newest_);
}

void FrameMailbox::close() {
    const std::scoped_lock lock(mutex_);
    arrived_ = nullptr;
    newest_.reset();
}

}  // namespace korvane
