// Quarter turns and mirror images of planar pictures.
#pragma once

struct AVFrame;

namespace korvane {

/// First transposed (rows become columns), then mirrored: left for right, top for bottom. All eight
/// orientations.
struct Turning {
    bool transposed = false;
    bool mirroredAcross = false;
    bool mirroredDown = false;
    bool isIdentity() const { return !transposed && !mirroredAcross && !mirroredDown; }
};

/// Turns every plane of `from` into `to`, which has the same 8-bit planar format and the turned size.
void turn(const AVFrame& from, Turning turning, AVFrame& to);

}  // namespace korvane
