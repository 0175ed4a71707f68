#include "platform/speech/whisper/worker/ModelSource.h"

#include <algorithm>

namespace korvane::whisper {
namespace {

/// Some seconds of the slowest network that is worth waiting for.
constexpr std::size_t longestPiece = 256 * 1024;

}  // namespace

whisper_model_loader ModelSource::loader() {
    whisper_model_loader made{};
    made.context = this;
    made.read = [](void* self, void* to, std::size_t count) {
        return static_cast<ModelSource*>(self)->read(static_cast<char*>(to), count);
    };
    made.eof = [](void* self) { return static_cast<ModelSource*>(self)->file_.eof(); };
    made.close = [](void* self) { static_cast<ModelSource*>(self)->file_.close(); };
    return made;
}

std::size_t ModelSource::read(char* to, std::size_t count) {
    std::size_t whole = 0;
    while (whole < count && file_) {
        const auto piece = std::min(count - whole, longestPiece);
        file_.read(to + whole, static_cast<std::streamsize>(piece));
        whole += static_cast<std::size_t>(file_.gcount());
        onPiece_();
    }
    return whole;
}

}  // namespace korvane::whisper
