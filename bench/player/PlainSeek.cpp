#include "bench/player/PlainSeek.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <cmath>
#include <stdexcept>

namespace korvane::bench {

struct PlainSeek::State {
    AVFormatContext* file = nullptr;
    AVCodecContext* decoder = nullptr;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    AVStream* stream = nullptr;
    ~State() {
        av_frame_free(&frame);
        av_packet_free(&packet);
        avcodec_free_context(&decoder);
        avformat_close_input(&file);
    }

    /// The next picture into `frame`. \return false at the end
    bool next() {
        while (true) {
            const int received = avcodec_receive_frame(decoder, frame);
            if (received == 0)
                return true;
            if (received != AVERROR(EAGAIN))
                return false;
            int read = 0;
            while ((read = av_read_frame(file, packet)) == 0 && packet->stream_index != stream->index)
                av_packet_unref(packet);
            avcodec_send_packet(decoder, read == 0 ? packet : nullptr);
            av_packet_unref(packet);
        }
    }
};

PlainSeek::PlainSeek(const std::string& video, int threads) : state_(std::make_unique<State>()) {
    State& s = *state_;
    const AVCodec* codec = nullptr;
    if (avformat_open_input(&s.file, video.c_str(), nullptr, nullptr) < 0 ||
        avformat_find_stream_info(s.file, nullptr) < 0)
        throw std::runtime_error(video + " can't be read");
    const int index = av_find_best_stream(s.file, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index < 0)
        throw std::runtime_error(video + " has no picture");
    s.stream = s.file->streams[index];
    for (unsigned i = 0; i < s.file->nb_streams; ++i)
        if (static_cast<int>(i) != index)
            s.file->streams[i]->discard = AVDISCARD_ALL;
    s.decoder = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(s.decoder, s.stream->codecpar);
    s.decoder->pkt_timebase = s.stream->time_base;
    s.decoder->thread_count = threads;
    if (avcodec_open2(s.decoder, codec, nullptr) < 0)
        throw std::runtime_error(video + " can't be decoded");
}

PlainSeek::~PlainSeek() = default;

double PlainSeek::to(double seconds) {
    State& s = *state_;
    const double unit = av_q2d(s.stream->time_base);
    const auto target = static_cast<std::int64_t>(std::floor(seconds / unit));
    const double length = 1.0 / av_q2d(s.stream->avg_frame_rate);
    if (av_seek_frame(s.file, s.stream->index, target, AVSEEK_FLAG_BACKWARD) < 0)
        throw std::runtime_error("the file can't be sought in");
    avcodec_flush_buffers(s.decoder);
    while (s.next())
        if (const double at = static_cast<double>(s.frame->best_effort_timestamp) * unit;
            at + length > seconds)
            return at;
    throw std::runtime_error("there is no picture at that time");
}

}  // namespace korvane::bench
