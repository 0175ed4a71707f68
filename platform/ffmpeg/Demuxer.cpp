#include "platform/ffmpeg/Demuxer.h"

#include <cstring>

#include "platform/ffmpeg/ContainerStructure.h"
#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// Not every protected file says so in its headers; what is still locked after reading can't be decoded.
bool isEncrypted(const AVPacket& packet) {
    return av_packet_get_side_data(&packet, AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr;
}

// Containers of recordings only: no playlists (they would open other files or the network), no pictures, no
// text.
constexpr const char* kContainers =
    "mov,mp4,matroska,webm,avi,mpegts,mpeg,mpegvideo,flv,asf,ogg,wav,w64,mp3,aac,ac3,eac3,dts,flac,aiff,caf,"
    "au,amr,"
    "mxf,gxf,nut,dv,rm,mjpeg,h264,hevc,m4v,ivf,obu,yuv4mpegpipe,wtv,gif,apng,nsv,ivr,swf,rawvideo,mpjpeg,tta,"
    "wv,ape";

// Packets that can't be read in a row before a damaged file counts as ended.
constexpr int kUnreadablePackets = 64;

}  // namespace

int Demuxer::interrupted(void* self) {
    return static_cast<Demuxer*>(self)->stop_.stop_requested() ? 1 : 0;
}

std::unique_ptr<Demuxer> Demuxer::open(const std::filesystem::path& path, std::stop_token stop,
                                       Interest interest, const std::shared_ptr<const KnownStreams>& known) {
    silenceLibraryLog();
    std::unique_ptr<Demuxer> self(new Demuxer(path, std::move(stop)));
    checkCancelled(self->stop_);
    std::error_code noStatus;
    const auto kind = std::filesystem::status(path, noStatus).type();
    if (kind == std::filesystem::file_type::not_found)
        throwOpenError(AVERROR(ENOENT), path);
    // A pipe or device would block for ever or give no way back to an earlier word.
    if (kind != std::filesystem::file_type::regular && kind != std::filesystem::file_type::directory &&
        kind != std::filesystem::file_type::none)
        throw MediaError(path.string() + " is not a regular file.");

    AVFormatContext* context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->interrupt_callback = {&Demuxer::interrupted, self.get()};
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", kContainers, 0);
    self->edits_ = readEditLists(path);
    // Taken apart by the library, an edit that begins between two pictures would move them all; as an offset
    // it is exact.
    if (self->edits_.simple)
        av_dict_set(&options, "advanced_editlist", "0", 0);
    const int opened = avformat_open_input(&context, ("file:" + path.string()).c_str(), nullptr, &options);
    av_dict_free(&options);
    if (opened < 0)
        throwOpenError(opened, path);  // the library has freed the context
    self->format_.reset(context);
    if (interest == Interest::sound && self->isIsoMedia())
        for (unsigned i = 0; i < context->nb_streams; ++i)
            if (context->streams[i]->codecpar->codec_type != AVMEDIA_TYPE_AUDIO)
                context->streams[i]->discard = AVDISCARD_ALL;
    if (known && known->tell(*context, path))
        return self;
    const int found = avformat_find_stream_info(context, nullptr);
    if (found < 0)
        throwOpenError(found, path);
    checkCancelled(self->stop_);
    return self;
}

bool Demuxer::isIsoMedia() const {
    return std::strstr(format_->iformat->name, "mov") != nullptr;
}

std::int64_t Demuxer::zeroTicks(int streamIndex) const {
    if (isIsoMedia() || format_->start_time == AV_NOPTS_VALUE || format_->start_time <= 0)
        return 0;
    return av_rescale_q(format_->start_time, AV_TIME_BASE_Q, stream(streamIndex)->time_base);
}

std::optional<TimeRange> Demuxer::shownRange(int streamIndex) const {
    const auto found = edits_.shown.find(static_cast<std::uint32_t>(stream(streamIndex)->id));
    if (!isIsoMedia() || found == edits_.shown.end())
        return std::nullopt;
    return found->second;
}

void Demuxer::select(int streamIndex) {
    selected_ = streamIndex;
    for (unsigned i = 0; i < format_->nb_streams; ++i)
        format_->streams[i]->discard = static_cast<int>(i) == streamIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

bool Demuxer::read(AVPacket* packet) {
    int unreadable = 0;
    while (true) {
        checkCancelled(stop_);
        const int result = av_read_frame(format_.get(), packet);
        if (result >= 0) {
            if (packet->stream_index == selected_ && isEncrypted(*packet))
                throw MediaError(path_.string() + " is encrypted and can't be opened here.");
            if (packet->stream_index == selected_)
                return true;
            av_packet_unref(packet);
            continue;
        }
        checkCancelled(stop_);
        const int deviceError = format_->pb ? format_->pb->error : 0;
        if (deviceError < 0 && deviceError != AVERROR_EOF && deviceError != AVERROR_INVALIDDATA)
            throwMediaError(deviceError, "Reading", path_);
        if (result == AVERROR_EOF || (format_->pb && avio_feof(format_->pb)))
            return false;
        if (result != AVERROR_INVALIDDATA && result != AVERROR(EAGAIN))
            throwMediaError(result, "Reading", path_);
        if (++unreadable == kUnreadablePackets)
            return false;
    }
}

void Demuxer::seek(std::int64_t ticks) {
    if (format_->pb)
        format_->pb->error = 0;
    if (avformat_seek_file(format_.get(), selected_, INT64_MIN, ticks, ticks, 0) >= 0)
        return;
    // Some demuxers know no way back but the beginning.
    if (avformat_seek_file(format_.get(), selected_, INT64_MIN, zeroTicks(selected_), INT64_MAX, 0) >= 0)
        return;
    const int result = avformat_seek_file(format_.get(), -1, INT64_MIN, 0, INT64_MAX, AVSEEK_FLAG_BYTE);
    if (result < 0)
        throwMediaError(result, "Going back in", path_);
}

std::optional<std::int64_t> Demuxer::keyPacketBefore(std::int64_t ticks) const {
    const AVIndexEntry* entry =
        avformat_index_get_entry_from_timestamp(stream(selected_), ticks, AVSEEK_FLAG_BACKWARD);
    if (!entry)
        return std::nullopt;
    return entry->timestamp;
}

bool Demuxer::isCutShort() const {
    return structureReachesBeyondEnd(path_);
}

bool Demuxer::isFragmented() const {
    return isIsoMedia() && hasMovieFragments(path_);
}

}  // namespace korvane
