// A model file as the Whisper library reads it through us, so that somebody learns of every piece that came:
// a large one takes many minutes from a slow folder of the network.
#pragma once

#include <whisper.h>

#include <cstddef>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

namespace korvane::whisper {

class ModelSource {
  public:
    /// \param onPiece  called after each, on the thread that reads.
    ModelSource(const std::string& path, std::function<void()> onPiece)
        : file_(path, std::ios::binary), onPiece_(std::move(onPiece)) {}

    /// As the library wants it; valid as long as this.
    whisper_model_loader loader();
    /// Whether the file couldn't be read on, as opposed to being at its end.
    bool isBroken() const { return file_.bad(); }

  private:
    std::size_t read(char* to, std::size_t count);

    std::ifstream file_;
    const std::function<void()> onPiece_;
};

}  // namespace korvane::whisper
