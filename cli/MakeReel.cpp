#include "cli/MakeReel.h"

#include <algorithm>

#include "cli/Failure.h"
#include "cli/WholeFile.h"
#include "editor/ExportError.h"
#include "editor/VideoEditor.h"
#include "platform/av/Asset.h"
#include "platform/ffmpeg/VideoDecoder.h"

namespace korvane::cli {

SubtitleSettings chosenStyle(const std::optional<std::filesystem::path>& file, const CommandContext& context,
                             const std::stop_token& stop) {
    if (!file)
        return SubtitleSettings::load(context.defaults);
    constexpr std::size_t largestStyleBytes = 1u << 20;
    const std::string json = readWholeFile(*file, largestStyleBytes, stop);
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const std::size_t skipped = json.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    try {
        return SubtitleSettings::fromJson(QByteArray::fromStdString(json.substr(skipped)));
    } catch (const SubtitleSettingsError& error) {
        throw Failure("\"" + file->string() + "\" is no subtitle style: " + error.what() + ".");
    }
}

namespace {

bool liesInside(const SpeechSegment& word, MediaTime length) {
    const double end = length.seconds();
    return MediaTime::fromSeconds(std::clamp(word.start(), 0.0, end)) <
           MediaTime::fromSeconds(std::clamp(word.end(), 0.0, end));
}

}  // namespace

MediaTime requirePicture(const std::filesystem::path& video, const std::stop_token& stop) {
    Asset asset(video, stop);
    const auto tracks = asset.loadTracks(MediaType::video);
    if (tracks.empty())
        throw ExportError::noVideoTrack();
    VideoDecoder::open(video, tracks.front().streamIndex, 1, stop)->pictureAt(kZeroTime);
    return asset.loadDuration();
}

CommandOutput makeReel(const std::filesystem::path& video, const std::vector<SpeechSegment>& words,
                       MediaTime length, const SubtitleSettings& style, const ReelOptions& options,
                       const CommandContext& context, const std::stop_token& stop) {
    const auto indices = resolveSelection(options.selected, options.dropped, words.size());
    if (indices.empty())
        throw ExportError::noSegmentsSelected();
    std::vector<SpeechSegment> chosen;
    chosen.reserve(indices.size());
    for (const auto index : indices)
        chosen.push_back(words[index]);
    if (std::ranges::none_of(chosen,
                             [length](const SpeechSegment& word) { return liesInside(word, length); }))
        throw ExportError::noContentInserted();

    context.queue.post([&console = context.console] {
        console.beginOperation();
        console.showProgress(Phase::exportingVideo, 0.0);
    });
    VideoEditor(context.queue, context.log)
        .exportVideo(
            video, chosen, style, options.output,
            [&console = context.console](double fraction) {
                console.showProgress(Phase::exportingVideo, fraction);
            },
            stop);
    return {{},
            "Wrote " + options.output.string() + ", " + std::to_string(chosen.size()) + " of " +
                std::to_string(words.size()) + (words.size() == 1 ? " word." : " words.")};
}

}  // namespace korvane::cli
