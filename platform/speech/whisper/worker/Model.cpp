#include "platform/speech/whisper/worker/Model.h"

#include <whisper.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "platform/models/ModelError.h"
#include "platform/models/WhisperModelFile.h"
#include "platform/speech/whisper/WhisperProtocol.h"
#include "platform/speech/whisper/worker/MemoryWatch.h"
#include "platform/speech/whisper/worker/ModelSource.h"
#include "platform/speech/whisper/worker/Rest.h"

namespace korvane::whisper {
namespace {

/// The attention heads that were found to follow the sound, of the models that everyone starts from. Only
/// where they fit: heads of layers that aren't there end the process.
whisper_alignment_heads_preset knownHeads(const WhisperModelShape& shape) {
    const bool english = !shape.multilingual();
    if (shape.audioLayers == 32 && shape.textLayers == 4 && shape.textState == 1280)
        return WHISPER_AHEADS_LARGE_V3_TURBO;
    if (shape.audioLayers != shape.textLayers)
        return WHISPER_AHEADS_N_TOP_MOST;
    if (shape.textLayers == 4 && shape.textState == 384)
        return english ? WHISPER_AHEADS_TINY_EN : WHISPER_AHEADS_TINY;
    if (shape.textLayers == 6 && shape.textState == 512)
        return english ? WHISPER_AHEADS_BASE_EN : WHISPER_AHEADS_BASE;
    if (shape.textLayers == 12 && shape.textState == 768)
        return english ? WHISPER_AHEADS_SMALL_EN : WHISPER_AHEADS_SMALL;
    if (shape.textLayers == 24 && shape.textState == 1024)
        return english ? WHISPER_AHEADS_MEDIUM_EN : WHISPER_AHEADS_MEDIUM;
    if (shape.textLayers == 32 && shape.textState == 1280)
        return shape.mels == 128 ? WHISPER_AHEADS_LARGE_V3 : WHISPER_AHEADS_LARGE_V2;
    return WHISPER_AHEADS_N_TOP_MOST;
}

whisper_context_params contextSettings(const WhisperModelShape& shape, bool useCard) {
    auto settings = whisper_context_default_params();
    settings.use_gpu = useCard;
    settings.flash_attn = false;  // with it there are no token times, silently
    settings.dtw_token_timestamps = true;
    settings.dtw_aheads_preset = knownHeads(shape);
    int heads = 32;  // more than any known set has
    if (settings.dtw_aheads_preset == WHISPER_AHEADS_N_TOP_MOST) {
        const int ofLayer = std::max(1, shape.textState / 64);
        // The upper half follows the sound best; not more heads than the alignment's memory is good for.
        settings.dtw_n_top = std::clamp(shape.textLayers / 2, 1, std::max(1, 48 / ofLayer));
        heads = std::max(heads, settings.dtw_n_top * ofLayer);
    }
    // Every head's weights of a window, for as many tokens as one can have, in the four copies that the
    // alignment makes of them. Only what is used is ever touched.
    const auto weights = static_cast<std::size_t>(heads) * static_cast<std::size_t>(shape.textContext) *
                         static_cast<std::size_t>(shape.audioContext) * sizeof(float);
    settings.dtw_mem_size = std::max(settings.dtw_mem_size, 4 * weights);
    return settings;
}

/// The library believes what a file says about itself, and a damaged one makes it write past its memory or
/// end the process: so the file is looked through first.
whisper_context_params settingsFor(const std::string& path, bool useCard) {
    try {
        return contextSettings(readWhisperModel(path), useCard);
    } catch (const ModelError& error) {
        throw Failure(failure::model, error.what());
    }
}

struct Callbacks {
    const std::function<bool()>& isStopped;
    Listener& listener;
    int percent = 0;         ///< of the way, where the pass begins
    int segmentsBefore = 0;  ///< those of the passes before the last
};

/// Behind the last time stamp, what is shorter than this is only the quiet behind the voice. In hundredths of
/// a second.
constexpr std::int64_t shortestRest = 35;
/// In steps of 20 ms. The library may take an earlier time stamp for the end of the pass, which then can't be
/// aligned; even the opening one, of a model that is caught in a loop behind it.
constexpr int shortestTimestamp = 9;

bool onAbort(void* data) {
    const auto& callbacks = *static_cast<Callbacks*>(data);
    return callbacks.isStopped();
}

void onProgress(whisper_context*, whisper_state*, int percent, void* data) {
    static_cast<Callbacks*>(data)->percent = percent;
}

/// Whether what is left for this pass is worth listening to, and nothing that ends the process.
bool isEnoughLeft(whisper_state* state, const Callbacks& callbacks) {
    const std::int64_t length = whisper_n_len_from_state(state);
    const int count = whisper_full_n_segments_from_state(state);
    // The last segment tells exactly where the pass before has ended, if it is of that one: it may have heard
    // nothing.
    if (count > callbacks.segmentsBefore)
        return length - whisper_full_get_segment_t1_from_state(state, count - 1) >= shortestRest;
    return canBeAligned(callbacks.percent, length);
}

bool onEncoderBegin(whisper_context*, whisper_state* state, void* data) {
    auto& callbacks = *static_cast<Callbacks*>(data);
    callbacks.listener.alive();
    if (!isEnoughLeft(state, callbacks))
        return false;
    callbacks.segmentsBefore = whisper_full_n_segments_from_state(state);
    return !callbacks.isStopped();
}

// Called for every token of every try: the nearest thing to a pulse.
void onLogits(whisper_context* context, whisper_state*, const whisper_token_data*, int, float* logits,
              void* data) {
    static_cast<Callbacks*>(data)->listener.alive();
    const auto beginning = whisper_token_beg(context);
    for (auto stamp = beginning + 1; stamp < beginning + shortestTimestamp; ++stamp)
        logits[stamp] = -std::numeric_limits<float>::infinity();
}

/// The chance that nobody speaks in the window that was heard last: that of the token which says so, at the
/// very beginning of the prompt. (The library has a function for it that looks at scores which were never
/// computed.)
double chanceOfSilence(whisper_context* context, int threads) {
    const auto beginning = whisper_token_sot(context);
    if (whisper_decode(context, &beginning, 1, 0, threads) != 0)
        return 0.0;
    const std::span scores(whisper_get_logits(context), static_cast<std::size_t>(whisper_n_vocab(context)));
    const double highest = *std::max_element(scores.begin(), scores.end());
    double sum = 0.0;
    for (const float score : scores)
        sum += std::exp(score - highest);
    return std::exp(scores[static_cast<std::size_t>(whisper_token_nosp(context))] - highest) / sum;
}

}  // namespace

struct Model::Library {
    ~Library() {
        if (context)
            whisper_free(context);
    }
    whisper_context* context = nullptr;
    int threads = 1;
};

Model::Model(const std::string& path, int threads, bool useCard, const std::function<void()>& onPiece)
    : library_(std::make_unique<Library>()) {
    const auto settings = settingsFor(path, useCard);
    forgetComplaints();
    library_->threads = threads;
    ModelSource source(path, onPiece);
    auto loader = source.loader();
    library_->context = whisper_init_with_params(&loader, settings);
    if (library_->context)
        return;
    if (hasMemoryRunOut())
        throw Failure(failure::memory, "There is not enough memory.");
    if (source.isBroken())
        throw Failure(failure::model, "The file can't be read to its end.");
    // The file was looked through: with a card it may be that one's failure, without it is the file's.
    throw Failure(useCard ? failure::engine : failure::model, "The library can't load it.");
}

Model::~Model() = default;

bool Model::recognise(const std::vector<float>& samples, const std::string& language,
                      const std::function<bool()>& isStopped, Listener& listener) {
    auto* const context = library_->context;
    if (whisper_lang_id(language.c_str()) < 0 || (!whisper_is_multilingual(context) && language != "en"))
        throw Failure(failure::language, "It doesn't know the language '" + language + "'.");
    Callbacks callbacks{isStopped, listener};
    auto settings = whisper_full_default_params(WHISPER_SAMPLING_GREEDY);
    settings.n_threads = library_->threads;
    settings.language = language.c_str();
    settings.no_context = true;    // what a request gives must not depend on the one before
    settings.suppress_nst = true;  // no notes of music, no speaker's names
    // The library's own judgement of silence looks at scores that are left over from the request before: it
    // would drop a pass, or not try again, for what was heard there. Ours is chanceOfSilence.
    settings.no_speech_thold = std::numeric_limits<float>::infinity();
    settings.print_progress = settings.print_realtime = settings.print_timestamps = settings.print_special =
        false;
    settings.abort_callback = onAbort;
    settings.progress_callback = onProgress;
    settings.encoder_begin_callback = onEncoderBegin;
    settings.logits_filter_callback = onLogits;
    settings.abort_callback_user_data = settings.progress_callback_user_data =
        settings.encoder_begin_callback_user_data = settings.logits_filter_callback_user_data = &callbacks;

    forgetComplaints();
    const int result = whisper_full(context, settings, samples.data(), static_cast<int>(samples.size()));
    if (isStopped())
        return false;
    if (result != 0)
        throw Failure(hasMemoryRunOut() ? failure::memory : failure::engine,
                      "The library gave up (" + std::to_string(result) + ").");

    const auto firstSpecial = whisper_token_eot(context);
    const int segments = whisper_full_n_segments(context);
    const double silence = segments > 0 ? chanceOfSilence(context, library_->threads) : 0.0;
    for (int i = 0; i < segments; ++i) {
        listener.segment(whisper_full_get_segment_t0(context, i), whisper_full_get_segment_t1(context, i),
                         i < callbacks.segmentsBefore ? 0.0 : silence);
        for (int j = 0; j < whisper_full_n_tokens(context, i); ++j) {
            const auto token = whisper_full_get_token_data(context, i, j);
            if (token.id < firstSpecial)
                listener.token(token.t_dtw, static_cast<double>(token.p),
                               whisper_token_to_str(context, token.id));
        }
    }
    return true;
}

}  // namespace korvane::whisper
