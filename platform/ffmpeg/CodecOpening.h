// Decoders for the streams of an open file.
#pragma once

#include "platform/ffmpeg/Demuxer.h"

namespace korvane {

/// \param threads  decoding threads; 1 for sound.
/// \throws MediaError when the stream is not there, is encrypted, or has no decoder here.
CodecContext openDecoder(const Demuxer& demuxer, int streamIndex, int threads);

/// True when openDecoder would find a decoder.
bool canDecode(const Demuxer& demuxer, int streamIndex);

}  // namespace korvane
