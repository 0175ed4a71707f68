#include "bench/RawPictures.h"

extern "C" {
#include <libavutil/frame.h>
}

#include <stdexcept>

namespace korvane::bench {

Size sizeOf(const AVFrame& picture) {
    return {static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

RawPictureFile::RawPictureFile(const std::filesystem::path& path) : file_(std::fopen(path.c_str(), "wb")) {
    if (!file_)
        throw std::runtime_error(path.string() + " can't be written.");
}

void RawPictureFile::append(const AVFrame& picture) {
    for (int plane = 0; plane < 3; ++plane) {
        const int shift = plane == 0 ? 0 : 1;
        const auto width = static_cast<std::size_t>(picture.width >> shift);
        for (int y = 0; y < picture.height >> shift; ++y)
            if (std::fwrite(picture.data[plane] + static_cast<std::ptrdiff_t>(y) * picture.linesize[plane], 1,
                            width, file_.get()) != width)
                throw std::runtime_error("The raw pictures can't be written; is the disk full?");
    }
}

}  // namespace korvane::bench
