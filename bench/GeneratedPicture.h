// A picture that is as hard to encode as one from a phone: texture of all sizes and hard edges, seen by a
// camera that pans and trembles, things that move before it, and grain. The same bytes on every machine with
// the same mathematical library.
#pragma once

#include <cstdint>
#include <vector>

namespace korvane::bench {

class GeneratedPicture {
  public:
    static constexpr int widthPx = 1920;
    static constexpr int heightPx = 1080;

    GeneratedPicture();

    /// The picture at `seconds`: planar YUV 4:2:0, 8 bit, plane after plane without padding. Valid until the
    /// next call. One thread at a time.
    const std::vector<std::uint8_t>& at(double seconds);

  private:
    /// Samples on a grid, read between its points.
    struct Texture {
        int width = 0;
        int height = 0;
        std::vector<float> samples;
        float at(float x, float y) const;
    };

    static Texture texture(int width, int height, int coarsest, int finest, std::uint32_t seed);
    void addEdges();
    void drawScene(double seconds);
    void drawThings(double seconds);
    void addGrain(double seconds);

    Texture luma_;
    Texture cb_;
    Texture cr_;
    Texture skin_;
    std::vector<std::int8_t> grain_;
    std::vector<std::uint8_t> frame_;
};

}  // namespace korvane::bench
