#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "platform/av/CompositionReader.h"

namespace korvane {
namespace {

/// Sample positions of a segment; lengths are differences of boundaries, so a thousand cuts drift by nothing.
struct SampleSegment {
    const AssetTrack* track = nullptr;
    std::int64_t from = 0;  ///< on the output
    std::int64_t to = 0;
    std::int64_t source = 0;  ///< position in the source of what sounds at `from`
};

/// A ramp in (fractional) samples.
struct SampleRamp {
    double from = 0.0;
    double length = 0.0;
    double startVolume = 1.0;
    double endVolume = 1.0;
};

double volumeAt(const SampleRamp& ramp, std::int64_t position) {
    const double share = (static_cast<double>(position) - ramp.from) / ramp.length;
    return ramp.startVolume + (ramp.endVolume - ramp.startVolume) * std::clamp(share, 0.0, 1.0);
}

struct MixedTrack {
    std::vector<SampleSegment> segments;
    std::vector<SampleRamp> ramps;
    std::map<std::pair<std::filesystem::path, int>, std::unique_ptr<AudioDecoder>> decoders;

    /// Multiplies by the volume: 1 before the first ramp, a ramp's end value until the next.
    void applyVolume(std::int64_t position, int channels, std::span<float> samples) const {
        if (ramps.empty())
            return;
        auto next = std::ranges::upper_bound(ramps, static_cast<double>(position), {}, &SampleRamp::from);
        const std::int64_t count = static_cast<std::int64_t>(samples.size()) / channels;
        for (std::int64_t i = 0; i < count; ++i) {
            while (next != ramps.end() && next->from <= static_cast<double>(position + i))
                ++next;
            if (next == ramps.begin())
                continue;
            const auto volume = static_cast<float>(volumeAt(*std::prev(next), position + i));
            for (int c = 0; c < channels; ++c)
                samples[static_cast<std::size_t>(i * channels + c)] *= volume;
        }
    }
};

MixedTrack prepared(const CompositionTrack& track, const std::optional<AudioMix>& mix, int rateHz) {
    MixedTrack result;
    for (const TrackSegment& s : track.segments())
        result.segments.push_back({&s.track, s.target.start.toUnits(rateHz), s.target.end().toUnits(rateHz),
                                   s.source.start.toUnits(rateHz)});
    if (!mix)
        return result;
    for (const auto& parameters : mix->inputParameters) {
        if (parameters.trackID != track.trackID())
            continue;
        for (const VolumeRamp& ramp : parameters.ramps)
            if (!ramp.range.isEmpty())
                result.ramps.push_back({ramp.range.start.seconds() * rateHz,
                                        ramp.range.duration.seconds() * rateHz, ramp.startVolume,
                                        ramp.endVolume});
    }
    std::ranges::stable_sort(result.ramps, {}, &SampleRamp::from);
    return result;
}

}  // namespace

struct CompositionAudioReader::State {
    std::shared_ptr<const Composition> composition;
    AudioFormat format;
    std::stop_token stop;
    std::vector<MixedTrack> tracks;
    std::vector<float> scratch;

    void readTrack(MixedTrack& track, std::int64_t position, std::span<float> out) {
        const std::int64_t end = position + static_cast<std::int64_t>(out.size()) / format.channels;
        auto segment = std::ranges::upper_bound(track.segments, position, {}, &SampleSegment::to);
        for (; segment != track.segments.end() && segment->from < end; ++segment) {
            const std::int64_t from = std::max(position, segment->from);
            const std::int64_t to = std::min(end, segment->to);
            if (from >= to)
                continue;
            auto& decoder = track.decoders[{segment->track->path, segment->track->streamIndex}];
            if (!decoder)
                decoder = AudioDecoder::open(segment->track->path, segment->track->streamIndex, format, stop);
            decoder->read(segment->source + (from - segment->from),
                          out.subspan(static_cast<std::size_t>((from - position) * format.channels),
                                      static_cast<std::size_t>((to - from) * format.channels)));
        }
    }
};

std::optional<AudioFormat> CompositionAudioReader::preferredFormat(const Composition& composition) {
    std::optional<AudioFormat> format;
    for (const CompositionTrack* track : composition.tracks(MediaType::audio))
        for (const TrackSegment& s : track->segments()) {
            const bool usual = s.track.sampleRateHz == 44100 || s.track.sampleRateHz == 48000;
            if (!format)
                format = AudioFormat{usual ? s.track.sampleRateHz : 48000, 1};
            if (s.track.channels != 1)
                format->channels = 2;
        }
    return format;
}

CompositionAudioReader::CompositionAudioReader(std::shared_ptr<const Composition> composition,
                                               std::optional<AudioMix> mix, AudioFormat format,
                                               std::stop_token stop)
    : state_(std::make_unique<State>()) {
    state_->composition = std::move(composition);
    state_->format = format;
    state_->stop = std::move(stop);
    for (const CompositionTrack* track : state_->composition->tracks(MediaType::audio))
        state_->tracks.push_back(prepared(*track, mix, format.rateHz));
}

CompositionAudioReader::~CompositionAudioReader() = default;

void CompositionAudioReader::read(std::int64_t position, std::span<float> out) {
    State& s = *state_;
    std::ranges::fill(out, 0.0F);
    for (MixedTrack& track : s.tracks) {
        s.scratch.assign(out.size(), 0.0F);
        s.readTrack(track, position, s.scratch);
        track.applyVolume(position, s.format.channels, s.scratch);
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] += s.scratch[i];
    }
    // Several tracks can add up to more than full scale.
    if (s.tracks.size() > 1)
        for (float& sample : out)
            sample = std::clamp(sample, -1.0F, 1.0F);
}

}  // namespace korvane
