// Finished pictures as bytes in a file: planar YUV 4:2:0, 8 bit, plane after plane without padding.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

#include "platform/geometry/Geometry.h"

struct AVFrame;

namespace korvane::bench {

Size sizeOf(const AVFrame& picture);

class RawPictureFile {
  public:
    /// \throws std::runtime_error when the file can't be made
    explicit RawPictureFile(const std::filesystem::path& path);
    /// \throws std::runtime_error when the disk is full
    void append(const AVFrame& picture);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
};

}  // namespace korvane::bench
