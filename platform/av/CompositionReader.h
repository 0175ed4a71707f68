// Reads a composition as a person would see and hear it. Picture and sound are read apart, each at its own
// pace and on its own thread; preview and export use the same two readers, so they show and sound the same.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>

#include "platform/av/AudioMix.h"
#include "platform/av/Composition.h"
#include "platform/av/VideoComposition.h"
#include "platform/ffmpeg/AudioDecoder.h"
#include "platform/ffmpeg/DecodedPicture.h"

struct AVFrame;

namespace korvane {

/// A source picture on its way to the canvas; empty where the composition has none.
struct TimedPicture {
    MediaTime time;
    DecodedPicture picture;
    const TrackSegment* segment = nullptr;  ///< owned by the composition
};

/// Two steps, so that decoding and drawing can run side by side: each step on one thread at a time.
class CompositionVideoReader {
  public:
    /// \param canvasScale  canvas pixels per unit of the render size: 1 for the export, less for a small
    /// preview. \param decodingThreads  threads of the decoder itself.
    CompositionVideoReader(std::shared_ptr<const Composition> composition, VideoComposition videoComposition,
                           double canvasScale, int decodingThreads, std::stop_token stop);
    ~CompositionVideoReader();

    /// Pictures rendered from now on have this size; what has been decoded stays. Between the two steps'
    /// calls.
    void setCanvasScale(double canvasScale);

    int width() const;  ///< canvas pixels, even
    int height() const;

    /// First step: finds the source picture shown at `t`, exactly. Any order; rising times are cheapest.
    /// Blocks. \throws MediaError, CancellationError
    TimedPicture pictureAt(MediaTime t);

    /// Pictures that the first step has decoded until now, on the way ones included.
    std::int64_t decodedPictures() const;

    /// Second step: places the picture on the canvas and draws the layers above it.
    /// \return planar YUV 4:2:0, 8 bit, BT.709 limited range, canvas size; the caller's own.
    /// \throws MediaError, CancellationError
    std::shared_ptr<AVFrame> render(const TimedPicture& picture);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Mixes every audio track of a composition.
class CompositionAudioReader {
  public:
    /// The sound format that suits the composition: 44.1 or 48 kHz as the first source where it has one of
    /// these, else 48 kHz; mono when every source is, else stereo. None without audio tracks.
    static std::optional<AudioFormat> preferredFormat(const Composition& composition);

    CompositionAudioReader(std::shared_ptr<const Composition> composition, std::optional<AudioMix> mix,
                           AudioFormat format, std::stop_token stop);
    ~CompositionAudioReader();

    /// Fills `out` (interleaved) with the samples from `position` on, counted from composition time 0; a
    /// boundary at time t lies at sample round(t x rate). Any position; going on is cheapest. Beyond the end:
    /// silence. Blocks. \throws MediaError, CancellationError
    void read(std::int64_t position, std::span<float> out);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
