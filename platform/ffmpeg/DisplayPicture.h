// Canvas pictures in the form that a screen takes.
#pragma once

#include <cstdint>
#include <memory>

struct AVFrame;

namespace korvane {

/// One picture in memory, opaque: rows of blue, green, red, 255. Immutable once handed out, so it is shared
/// between threads; its memory goes back to the converter's stock with the last owner.
struct DisplayPicture {
    const std::uint8_t* data = nullptr;  ///< aligned to 64 bytes; one spare row follows the last
    int width = 0;                       ///< pixels
    int height = 0;
    int strideBytes = 0;  ///< a multiple of 64
    std::size_t bytes() const {
        return static_cast<std::size_t>(strideBytes) * static_cast<std::size_t>(height);
    }
};

/// Turns canvas pictures (planar YUV 4:2:0, 8 bit, BT.709 limited range) into display pictures: the matrix
/// and the range are undone, the transfer curve stays, as screens expect it. One thread at a time; the
/// pictures may outlive it.
class DisplayConverter {
  public:
    DisplayConverter();
    ~DisplayConverter();

    /// The top left part of the canvas. \param width,height  1 to the canvas' size.
    /// \throws MediaError, std::bad_alloc
    std::shared_ptr<const DisplayPicture> convert(const AVFrame& canvas, int width, int height);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
