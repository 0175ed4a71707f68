#include <algorithm>

#include "platform/av/CompositionReader.h"
#include "platform/av/SessionBase.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/MovieWriter.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

constexpr int kBlockFrames = 8192;

class AudioExportSession final : public SessionBase {
  public:
    explicit AudioExportSession(std::shared_ptr<Asset> asset) : asset_(std::move(asset)) {}

    std::vector<FileType> supportedFileTypes() const override { return {FileType::m4a}; }

  protected:
    void write(const std::stop_token& stop) override {
        const std::vector<AssetTrack> tracks = asset_->loadTracks(MediaType::audio);
        const bool copied = tracks.size() == 1 && copyAacTrack(
                                                      asset_->path(), tracks.front().streamIndex, outputPath,
                                                      [this](double share) { report(share); }, stop);
        if (!copied)
            encode(tracks, stop);
    }

  private:
    /// Every track mixed into one, from time 0 to the end of the last.
    void encode(const std::vector<AssetTrack>& tracks, const std::stop_token& stop) {
        auto composition = std::make_shared<Composition>();
        MediaTime end;
        for (const AssetTrack& track : tracks) {
            if (track.timeRange.end() <= kZeroTime)
                continue;
            composition->addMutableTrack(MediaType::audio)
                ->insertTimeRange({kZeroTime, track.timeRange.end()}, track, kZeroTime);
            end = std::max(end, track.timeRange.end());
        }
        const auto format = CompositionAudioReader::preferredFormat(*composition);
        if (!format)
            throw MediaError("The sound of " + asset_->path().string() + " has no length.");
        CompositionAudioReader reader(composition, std::nullopt, *format, stop);
        const auto writer = MovieWriter::open(outputPath, std::nullopt, format, stop);
        const std::int64_t total = end.toUnits(format->rateHz);
        std::vector<float> block;
        for (std::int64_t position = 0; position < total; position += kBlockFrames) {
            const std::int64_t count = std::min<std::int64_t>(kBlockFrames, total - position);
            block.resize(static_cast<std::size_t>(count * format->channels));
            reader.read(position, block);
            writer->writeAudio(block);
            report(static_cast<double>(position) / static_cast<double>(total));
        }
        writer->finish();
    }

    std::shared_ptr<Asset> asset_;
};

}  // namespace

std::unique_ptr<ExportSession> makeAudioExportSession(std::shared_ptr<Asset> asset) {
    return std::make_unique<AudioExportSession>(std::move(asset));
}

}  // namespace korvane
