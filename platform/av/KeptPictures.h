// Pictures of a loop that are kept from one lap to the next. Words lie apart in their source, and to reach
// the first picture of one, everything from the key picture before it has to be decoded; a machine that can't
// keep up with that stumbles in every lap. So those stretches are kept whole for which most had to be
// decoded, as far as memory allows. One thread.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "platform/time/MediaTime.h"

struct AVFrame;

namespace korvane {

class KeptPictures {
  public:
    using Canvas = std::shared_ptr<const AVFrame>;

    /// \param mostBytes  never held more than that.
    explicit KeptPictures(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    /// The picture of item time `t`; null when it is not kept.
    Canvas find(MediaTime t) const;

    /// Keeps the picture if its stretch is worth more than what would have to go for it.
    /// \param stretch   where the stretch begins; names it.
    /// \param pictures  > 0: of the whole stretch, and as many are made room for.
    /// \param decoded   pictures that had to be decoded for this one.
    /// \return whether the picture is kept now.
    bool offer(MediaTime stretch, std::int64_t pictures, MediaTime t, Canvas canvas, std::int64_t decoded);

    void clear();
    std::size_t bytes() const { return bytes_; }  ///< of what is kept and what is made room for

  private:
    struct Stretch {
        std::map<MediaTime, Canvas> pictures;
        std::size_t bytes = 0;
        double worth = 0.0;  ///< pictures decoded to get there, for each one kept
    };
    bool makeRoom(std::size_t bytes, double worth);

    std::size_t mostBytes_;
    std::size_t bytes_ = 0;
    std::map<MediaTime, Stretch> stretches_;
};

}  // namespace korvane
