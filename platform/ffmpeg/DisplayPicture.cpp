#include "platform/ffmpeg/DisplayPicture.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <vector>

#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/ScalingGraph.h"

namespace korvane {
namespace {

constexpr std::size_t kAlign = 64;
// Pictures let go while the player shows on; more than these are given back to the system.
constexpr std::size_t kKeptBuffers = 4;

struct FreeAligned {
    void operator()(std::uint8_t* memory) const { ::operator delete(memory, std::align_val_t(kAlign)); }
};
using Buffer = std::unique_ptr<std::uint8_t, FreeAligned>;

/// Buffers of one size that wait for their next picture: fresh pages cost as much as the conversion.
class Stock {
  public:
    explicit Stock(std::size_t bytes) : bytes_(bytes) {}
    std::size_t bytes() const { return bytes_; }

    Buffer take() {
        {
            const std::scoped_lock lock(mutex_);
            if (!buffers_.empty()) {
                Buffer buffer = std::move(buffers_.back());
                buffers_.pop_back();
                return buffer;
            }
        }
        return Buffer(static_cast<std::uint8_t*>(::operator new(bytes_, std::align_val_t(kAlign))));
    }

    void giveBack(Buffer buffer) {
        const std::scoped_lock lock(mutex_);
        if (buffers_.size() < kKeptBuffers)
            buffers_.push_back(std::move(buffer));
    }

  private:
    std::size_t bytes_;
    std::mutex mutex_;
    std::vector<Buffer> buffers_;
};

ImageForm displayRgb(int width, int height) {
    ImageForm form = ImageForm::yuv420(width, height);
    form.format = AV_PIX_FMT_GBRP;
    form.colors.family = ZIMG_COLOR_RGB;
    form.colors.matrix = ZIMG_MATRIX_RGB;
    form.colors.range = ZIMG_RANGE_FULL;
    return form;
}

void interleave(const AVFrame& planes, std::uint8_t* target, std::size_t stride, int width, int height) {
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* green = planes.data[0] + static_cast<std::ptrdiff_t>(y) * planes.linesize[0];
        const std::uint8_t* blue = planes.data[1] + static_cast<std::ptrdiff_t>(y) * planes.linesize[1];
        const std::uint8_t* red = planes.data[2] + static_cast<std::ptrdiff_t>(y) * planes.linesize[2];
        std::uint8_t* row = target + static_cast<std::size_t>(y) * stride;
        for (int x = 0; x < width; ++x) {
            row[4 * x] = blue[x];
            row[4 * x + 1] = green[x];
            row[4 * x + 2] = red[x];
            row[4 * x + 3] = 255;
        }
    }
}

}  // namespace

struct DisplayConverter::State {
    std::unique_ptr<ScalingGraph> graph;
    int canvasWidth = 0;
    int canvasHeight = 0;
    std::shared_ptr<Stock> stock;
};

DisplayConverter::DisplayConverter() : state_(std::make_unique<State>()) {}
DisplayConverter::~DisplayConverter() = default;

std::shared_ptr<const DisplayPicture> DisplayConverter::convert(const AVFrame& canvas, int width,
                                                                int height) {
    State& s = *state_;
    if (!s.graph || s.canvasWidth != canvas.width || s.canvasHeight != canvas.height) {
        s.graph = std::make_unique<ScalingGraph>(ImageForm::yuv420(canvas.width, canvas.height),
                                                 displayRgb(canvas.width, canvas.height));
        s.canvasWidth = canvas.width;
        s.canvasHeight = canvas.height;
    }
    width = std::clamp(width, 1, canvas.width);
    height = std::clamp(height, 1, canvas.height);
    const std::size_t stride = (static_cast<std::size_t>(width) * 4 + kAlign - 1) / kAlign * kAlign;
    const std::size_t bytes = stride * (static_cast<std::size_t>(height) + 1);
    if (!s.stock || s.stock->bytes() != bytes)
        s.stock = std::make_shared<Stock>(bytes);

    const auto planes = s.graph->run(canvas, nullptr);
    Buffer buffer = s.stock->take();
    interleave(*planes, buffer.get(), stride, width, height);
    auto picture = std::make_unique<DisplayPicture>(
        DisplayPicture{buffer.get(), width, height, static_cast<int>(stride)});
    return {picture.release(),
            [stock = s.stock, memory = std::make_shared<Buffer>(std::move(buffer))](const DisplayPicture* p) {
                stock->giveBack(std::move(*memory));
                delete p;
            }};
}

}  // namespace korvane
