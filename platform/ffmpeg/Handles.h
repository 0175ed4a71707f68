// Owning handles of the media libraries' objects: a unique_ptr with a stateless deleter, one alias a kind.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace korvane {

template <auto free>
struct FreeByAddress {
    template <class T>
    void operator()(T* object) const {
        free(&object);
    }
};
struct FreeSws {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using FormatInput = std::unique_ptr<AVFormatContext, FreeByAddress<avformat_close_input>>;
using CodecContext = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using Frame = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using Resampler = std::unique_ptr<SwrContext, FreeByAddress<swr_free>>;
using Scaler = std::unique_ptr<SwsContext, FreeSws>;
using FilterGraph = std::unique_ptr<AVFilterGraph, FreeByAddress<avfilter_graph_free>>;

/// The handle of what `object` points to; running out of memory is an exception like everywhere else.
template <class Handle>
Handle owned(typename Handle::pointer object) {
    if (!object)
        throw std::bad_alloc();
    return Handle(object);
}
inline Frame makeFrame() {
    return owned<Frame>(av_frame_alloc());
}
inline Packet makePacket() {
    return owned<Packet>(av_packet_alloc());
}

}  // namespace korvane
