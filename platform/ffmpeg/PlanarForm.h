// Brings pictures of any memory layout into planes that the scaler reads.
#pragma once

#include <memory>

struct AVFrame;
struct SwsContext;

namespace korvane {

/// Keeps its plan while the format stays the same. One thread at a time.
class PlanarForm {
  public:
    PlanarForm();
    ~PlanarForm();
    /// Odd sizes with halved colour planes grow by a column or row, which crop_right or crop_bottom then
    /// tells. The same picture with the same values as planar YUV, or planar RGB (G, B, R), 8 to 16 bit or
    /// 32-bit float, rows and planes aligned to 32 bytes. The input itself where it is that already. Alpha is
    /// dropped, grey gets neutral colour planes. Colour tags go along. \throws MediaError for a format
    /// without a planar form.
    std::shared_ptr<const AVFrame> of(const std::shared_ptr<const AVFrame>& frame);

    /// Of an interlaced picture the field that comes first, as a picture of half the height; others as they
    /// are. What moves would stand in combs otherwise.
    static std::shared_ptr<const AVFrame> firstField(const std::shared_ptr<const AVFrame>& frame);

  private:
    std::shared_ptr<const AVFrame> planes(const std::shared_ptr<const AVFrame>& frame);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
