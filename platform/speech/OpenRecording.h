// How an engine gets at the sound of a file: a parameter, so that tests can put something else in its place.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

#include "platform/ffmpeg/AudioDecoder.h"

namespace korvane {

/// Opens a recording as mono at a rate. \throws MediaError when it can't be read.
using OpenRecording = std::function<std::unique_ptr<AudioDecoder>(const std::filesystem::path& path,
                                                                  int rateHz, std::stop_token stop)>;

/// Opens the first audio stream of any file that the media libraries read.
inline OpenRecording openMediaRecording() {
    return [](const std::filesystem::path& path, int rateHz, std::stop_token stop) {
        return AudioDecoder::open(path, -1, AudioFormat{rateHz, 1}, std::move(stop));
    };
}

}  // namespace korvane
