#include "platform/ffmpeg/KnownStreams.h"

#include <cstring>
#include <new>
#include <utility>

namespace korvane {

std::optional<KnownStreams::Identity> KnownStreams::identityOf(const std::filesystem::path& path) {
    std::error_code noSize;
    std::error_code noTime;
    const Identity identity{std::filesystem::file_size(path, noSize),
                            std::filesystem::last_write_time(path, noTime)};
    return noSize || noTime ? std::nullopt : std::optional(identity);
}

std::shared_ptr<const KnownStreams> KnownStreams::of(const AVFormatContext& format,
                                                     const std::filesystem::path& path) {
    const auto identity = identityOf(path);
    if (!identity || !std::strstr(format.iformat->name, "mov"))
        return nullptr;
    auto known = std::make_shared<KnownStreams>();
    known->file_ = *identity;
    known->start_ = format.start_time;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream& stream = *format.streams[i];
        Stream entry;
        entry.codec.reset(avcodec_parameters_alloc());
        if (!entry.codec || avcodec_parameters_copy(entry.codec.get(), stream.codecpar) < 0)
            throw std::bad_alloc();
        entry.start = stream.start_time;
        entry.meanRate = stream.avg_frame_rate;
        entry.baseRate = stream.r_frame_rate;
        entry.pixelAspect = stream.sample_aspect_ratio;
        known->streams_.push_back(std::move(entry));
    }
    return known;
}

bool KnownStreams::tell(AVFormatContext& format, const std::filesystem::path& path) const {
    if (identityOf(path) != file_ || format.nb_streams != streams_.size())
        return false;
    for (unsigned i = 0; i < format.nb_streams; ++i)
        if (format.streams[i]->codecpar->codec_id != streams_[i].codec->codec_id)
            return false;
    format.start_time = start_;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        AVStream& stream = *format.streams[i];
        const Stream& known = streams_[i];
        if (avcodec_parameters_copy(stream.codecpar, known.codec.get()) < 0)
            throw std::bad_alloc();
        stream.start_time = known.start;
        stream.avg_frame_rate = known.meanRate;
        stream.r_frame_rate = known.baseRate;
        stream.sample_aspect_ratio = known.pixelAspect;
    }
    return true;
}

}  // namespace korvane
