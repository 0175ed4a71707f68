// One MP4 or M4A file being written: streams, header, packets, index at the front.
#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>

#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/OutputFile.h"

namespace korvane {

struct CloseOutput {
    void operator()(AVFormatContext* context) const {
        if (context->pb)
            avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
using FormatOutput = std::unique_ptr<AVFormatContext, CloseOutput>;

/// Lives on one thread at a time.
class Muxer {
  public:
    /// \param formatName  the library's: "mp4" or "ipod" (M4A). \throws MediaError
    Muxer(const std::filesystem::path& destination, const char* formatName, std::stop_token stop);

    AVStream* addStream();
    AVFormatContext* format() { return format_.get(); }
    void writeHeader();
    /// Takes the packet's data; its times are in `from` and its stream is set. Order between streams is made
    /// here.
    void write(AVPacket* packet, AVRational from);
    /// Index, then the name. \throws MediaError, CancellationError; then the destination is as it was.
    void finish();

  private:
    static int interrupted(void* self);
    void check(int result);

    std::stop_token stop_;
    OutputFile file_;
    FormatOutput format_;
};

}  // namespace korvane
