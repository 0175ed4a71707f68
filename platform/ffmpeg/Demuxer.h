// One open source file: its streams on a time line that starts at 0, its packets, and seeking. Lives on one
// thread at a time.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>

#include "platform/ffmpeg/EditLists.h"
#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/KnownStreams.h"
#include "platform/time/MediaTime.h"

namespace korvane {

class Demuxer {
  public:
    /// What is looked at while opening. Looking at the picture decodes some of it, which who only wants the
    /// sound need not wait for; the index of an ISO media file tells the rest.
    enum class Interest { everything, sound };

    /// \throws MediaError when the file can't be opened or understood; CancellationError once stop is
    /// requested.
    /// \param known  what learnt() said of the same file, which is then not looked at again.
    static std::unique_ptr<Demuxer> open(const std::filesystem::path& path, std::stop_token stop,
                                         Interest interest = Interest::everything,
                                         const std::shared_ptr<const KnownStreams>& known = nullptr);

    /// For who opens the file again. Before anything was read, and after an interest in everything; may be
    /// null.
    std::shared_ptr<const KnownStreams> learnt() const { return KnownStreams::of(*format_, path_); }

    const std::filesystem::path& path() const { return path_; }
    AVFormatContext* format() const { return format_.get(); }
    AVStream* stream(int index) const { return format_->streams[index]; }
    bool isIsoMedia() const;

    /// Ticks of the stream's time base at time 0. ISO media files have a time line of their own that starts
    /// at 0; other files (transport streams, say) start when their first packet does.
    std::int64_t zeroTicks(int streamIndex) const;

    /// When the stream is shown, where an edit list says so in one stretch. Packets before and behind may
    /// come all the same; what they hold is not to be shown.
    std::optional<TimeRange> shownRange(int streamIndex) const;

    /// Reads packets of this stream only from here on.
    void select(int streamIndex);

    /// The next packet of the selected stream into `packet`.
    /// \return false at the end, which a damaged or shortened file may have earlier than it says.
    /// \throws MediaError when the device fails, CancellationError.
    bool read(AVPacket* packet);

    /// Goes to the last key packet whose decoding time is <= `ticks` of the selected stream, or to the start.
    void seek(std::int64_t ticks);
    /// Decoding time of that key packet, as far as the file's index knows.
    std::optional<std::int64_t> keyPacketBefore(std::int64_t ticks) const;

    /// True when the file is shorter than its own structure says (looked up in the file at each call).
    bool isCutShort() const;
    /// True when an ISO media file keeps its index in fragments, so that its header does not know the length.
    bool isFragmented() const;

  private:
    Demuxer(std::filesystem::path path, std::stop_token stop)
        : path_(std::move(path)), stop_(std::move(stop)) {}
    static int interrupted(void* self);

    std::filesystem::path path_;
    std::stop_token stop_;
    EditLists edits_;
    FormatInput format_;
    int selected_ = -1;
};

}  // namespace korvane
