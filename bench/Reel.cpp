#include "bench/Reel.h"

#include "bench/IdleQueue.h"
#include "editor/VideoEditor.h"
#include "platform/av/CompositionReader.h"

namespace korvane::bench {
namespace {

constexpr int kDecodingThreads = 2;

struct Built {
    CompositionData data;
    std::vector<SubtitleEntry> lines;
};

Built build(VideoEditor& editor, const std::filesystem::path& video, const ReelShape& shape) {
    const auto asset = realEditorPlatform().openAsset(video, {});
    Built built{editor.buildCompositionData(*asset, chooseWords(shape), {}), {}};
    built.lines = VideoEditor::groupSubtitleEntries(built.data.subtitleEntries);
    built.data.videoComposition.animationTool = editor.buildAnimationLayer(built.lines, SubtitleSettings{});
    return built;
}

}  // namespace

std::vector<SubtitleEntry> subtitleLines(const std::filesystem::path& video, const ReelShape& shape) {
    IdleQueue queue;
    VideoEditor editor(queue, silentLog());
    const Built built = build(editor, video, shape);
    std::vector<SubtitleEntry> lines = built.lines;
    for (SubtitleEntry& line : lines) {
        line.start -= built.data.prerollDuration.seconds();
        line.end -= built.data.prerollDuration.seconds();
    }
    return lines;
}

int renderReel(const std::filesystem::path& video, const ReelShape& shape,
               const std::function<void(std::shared_ptr<AVFrame>)>& take) {
    IdleQueue queue;
    VideoEditor editor(queue, silentLog());
    const CompositionData data = build(editor, video, shape).data;
    const MediaTime step = data.videoComposition.frameDuration;
    const auto rate = static_cast<int>(step.timescale() / step.value());
    CompositionVideoReader reader(data.composition, data.videoComposition, 1.0, kDecodingThreads, {});
    const MediaTime length = data.composition->duration() - data.prerollDuration;
    const std::int64_t count = length.toUnits(rate, Rounding::up);
    for (std::int64_t i = 0; i < count; ++i)
        take(reader.render(reader.pictureAt(data.prerollDuration + MediaTime(i, rate))));
    return rate;
}

void exportReel(const std::filesystem::path& video, const ReelShape& shape,
                const std::filesystem::path& destination) {
    IdleQueue queue;
    VideoEditor(queue, silentLog())
        .exportVideo(video, chooseWords(shape), SubtitleSettings{}, destination, [](double) {}, {});
}

}  // namespace korvane::bench
