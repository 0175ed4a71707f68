#include "platform/ffmpeg/CodecOpening.h"

#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

bool isEncrypted(const AVStream& stream) {
    const unsigned tag = stream.codecpar->codec_tag;
    if (tag == MKTAG('e', 'n', 'c', 'v') || tag == MKTAG('e', 'n', 'c', 'a') ||
        tag == MKTAG('d', 'r', 'm', 'i') || tag == MKTAG('d', 'r', 'm', 's'))
        return true;
    return av_stream_get_side_data(&stream, AV_PKT_DATA_ENCRYPTION_INIT_INFO, nullptr) != nullptr;
}

/// The library's name, or the four characters that the file has for what the library does not know.
std::string codecName(const AVCodecParameters& codec) {
    char characters[AV_FOURCC_MAX_STRING_SIZE] = {};
    if (codec.codec_id == AV_CODEC_ID_NONE && codec.codec_tag != 0)
        return av_fourcc_make_string(characters, codec.codec_tag);
    return avcodec_get_name(codec.codec_id);
}

const char* kindOf(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO ? "sound" : "picture";
}

}  // namespace

bool canDecode(const Demuxer& demuxer, int streamIndex) {
    const AVStream& stream = *demuxer.stream(streamIndex);
    return !isEncrypted(stream) && avcodec_find_decoder(stream.codecpar->codec_id) != nullptr;
}

CodecContext openDecoder(const Demuxer& demuxer, int streamIndex, int threads) {
    const std::string file = demuxer.path().string();
    if (streamIndex < 0 || streamIndex >= static_cast<int>(demuxer.format()->nb_streams))
        throw MediaError(file + " has no track " + std::to_string(streamIndex + 1) + ".");
    const AVStream& stream = *demuxer.stream(streamIndex);
    if (isEncrypted(stream))
        throw MediaError("The " + std::string(kindOf(stream)) + " of " + file +
                         " is encrypted and can't be opened here.");
    const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!decoder)
        throw MediaError("The " + std::string(kindOf(stream)) + " of " + file +
                         " uses a codec that can't be decoded here (" + codecName(*stream.codecpar) + ").");
    CodecContext codec = owned<CodecContext>(avcodec_alloc_context3(decoder));
    int result = avcodec_parameters_to_context(codec.get(), stream.codecpar);
    if (result < 0)
        throwMediaError(result, "Preparing to decode", demuxer.path());
    codec->pkt_timebase = stream.time_base;
    codec->thread_count = threads;
    result = avcodec_open2(codec.get(), decoder, nullptr);
    if (result < 0)
        throwMediaError(result, std::string("Preparing to decode the ") + kindOf(stream) + " of",
                        demuxer.path());
    return codec;
}

}  // namespace korvane
