#include "platform/ffmpeg/Muxer.h"

#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {

int Muxer::interrupted(void* self) {
    return static_cast<Muxer*>(self)->stop_.stop_requested() ? 1 : 0;
}

void Muxer::check(int result) {
    checkCancelled(stop_);
    // A write that failed inside a buffer shows only here.
    if (result >= 0 && format_->pb && format_->pb->error < 0)
        result = format_->pb->error;
    if (result < 0)
        throwMediaError(result, "Writing", file_.destination());
}

Muxer::Muxer(const std::filesystem::path& destination, const char* formatName, std::stop_token stop)
    : stop_(std::move(stop)), file_(destination) {
    silenceLibraryLog();
    AVFormatContext* context = nullptr;
    int result = avformat_alloc_output_context2(&context, nullptr, formatName, file_.workingPath().c_str());
    format_.reset(context);
    check(result);
    context->interrupt_callback = {&Muxer::interrupted, this};
    context->flags |= AVFMT_FLAG_BITEXACT;  // no library version or date in the file
    result = avio_open2(&context->pb, ("file:" + file_.workingPath()).c_str(), AVIO_FLAG_WRITE,
                        &context->interrupt_callback, nullptr);
    check(result);
}

AVStream* Muxer::addStream() {
    AVStream* stream = avformat_new_stream(format_.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    return stream;
}

void Muxer::writeHeader() {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    // Starts are written in units of the movie; a millisecond would put sound dozens of samples off.
    for (unsigned i = 0; i < format_->nb_streams; ++i)
        if (format_->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            av_dict_set_int(&options, "movie_timescale", format_->streams[i]->codecpar->sample_rate, 0);
    const int result = avformat_write_header(format_.get(), &options);
    av_dict_free(&options);
    check(result);
}

void Muxer::write(AVPacket* packet, AVRational from) {
    av_packet_rescale_ts(packet, from, format_->streams[packet->stream_index]->time_base);
    check(av_interleaved_write_frame(format_.get(), packet));
}

void Muxer::finish() {
    check(av_write_trailer(format_.get()));
    check(avio_closep(&format_->pb));
    file_.publish();
}

}  // namespace korvane
