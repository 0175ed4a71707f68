// Everything of the Whisper library that the worker uses, for the build to try whether this is the library
// that the worker is written for. Never run.
#include <ggml-backend.h>
#include <ggml.h>
#include <whisper.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace {

void onLog(ggml_log_level, const char*, void*) {}

void devices() {
    whisper_log_set(onLog, nullptr);
    ggml_log_set(onLog, nullptr);
    ggml_set_abort_callback([](const char*) {});
    ggml_backend_load_all();
    ggml_backend_load_all_from_path("");
    for (size_t i = 0; i < ggml_backend_dev_count(); ++i) {
        ggml_backend_dev_t device = ggml_backend_dev_get(i);
        const auto type = ggml_backend_dev_type(device);
        if (type == GGML_BACKEND_DEVICE_TYPE_GPU || type == GGML_BACKEND_DEVICE_TYPE_IGPU)
            ggml_backend_free(ggml_backend_dev_init(device, ggml_backend_dev_name(device)));
    }
    ggml_backend_dev_by_type(GGML_BACKEND_DEVICE_TYPE_CPU);
}

whisper_context* model() {
    whisper_context_params settings = whisper_context_default_params();
    settings.use_gpu = true;
    settings.flash_attn = false;
    settings.dtw_token_timestamps = true;
    for (const auto heads : {WHISPER_AHEADS_N_TOP_MOST, WHISPER_AHEADS_TINY_EN, WHISPER_AHEADS_TINY,
                             WHISPER_AHEADS_BASE_EN, WHISPER_AHEADS_BASE, WHISPER_AHEADS_SMALL_EN,
                             WHISPER_AHEADS_SMALL, WHISPER_AHEADS_MEDIUM_EN, WHISPER_AHEADS_MEDIUM,
                             WHISPER_AHEADS_LARGE_V2, WHISPER_AHEADS_LARGE_V3, WHISPER_AHEADS_LARGE_V3_TURBO})
        settings.dtw_aheads_preset = heads;
    settings.dtw_n_top = 1;
    settings.dtw_mem_size = size_t{1};
    whisper_model_loader loader{};
    loader.context = nullptr;
    loader.read = [](void*, void*, size_t) -> size_t { return 0; };
    loader.eof = [](void*) { return true; };
    loader.close = [](void*) {};
    return whisper_init_with_params(&loader, settings);
}

whisper_full_params settings() {
    whisper_full_params settings = whisper_full_default_params(WHISPER_SAMPLING_GREEDY);
    settings.n_threads = 1;
    settings.language = "en";
    settings.no_context = settings.suppress_nst = true;
    settings.no_speech_thold = 1.0F;
    settings.print_progress = settings.print_realtime = settings.print_timestamps = settings.print_special =
        false;
    settings.abort_callback = [](void*) { return false; };
    settings.progress_callback = [](whisper_context*, whisper_state*, int, void*) {};
    settings.encoder_begin_callback = [](whisper_context*, whisper_state*, void*) { return true; };
    settings.logits_filter_callback = [](whisper_context*, whisper_state*, const whisper_token_data*, int,
                                         float*, void*) {};
    settings.abort_callback_user_data = settings.progress_callback_user_data =
        settings.encoder_begin_callback_user_data = settings.logits_filter_callback_user_data = nullptr;
    return settings;
}

double ask(whisper_context* context, whisper_state* state) {
    const float sound = 0.0F;
    double all = whisper_full(context, settings(), &sound, 1);
    const whisper_token token = whisper_token_sot(context);
    all += whisper_decode(context, &token, 1, 0, 1) + static_cast<double>(*whisper_get_logits(context));
    all += whisper_n_vocab(context) + whisper_token_eot(context) + whisper_token_beg(context) +
           whisper_token_nosp(context) + whisper_is_multilingual(context) + whisper_lang_id("en");
    all += whisper_n_len_from_state(state) + whisper_full_n_segments_from_state(state);
    all += static_cast<double>(whisper_full_get_segment_t1_from_state(state, 0));
    all += whisper_full_n_segments(context) + whisper_full_n_tokens(context, 0);
    all += static_cast<double>(whisper_full_get_segment_t0(context, 0) +
                               whisper_full_get_segment_t1(context, 0));
    const whisper_token_data heard = whisper_full_get_token_data(context, 0, 0);
    const int64_t aligned = heard.t_dtw;
    all += static_cast<double>(aligned) + static_cast<double>(heard.p) + heard.id;
    return all + *whisper_token_to_str(context, heard.id);
}

double voices() {
    whisper_vad_context_params settings = whisper_vad_default_context_params();
    settings.n_threads = 1;
    whisper_vad_context* const context = whisper_vad_init_from_file_with_params("", settings);
    const float sound = 0.0F;
    const bool heard = whisper_vad_detect_speech(context, &sound, 1);
    const int count = whisper_vad_n_probs(context);
    const float* const chances = whisper_vad_probs(context);
    whisper_vad_free(context);
    return heard && count > 0 ? static_cast<double>(*chances) : 0.0;
}

}  // namespace

int main() {
    devices();
    whisper_context* const context = model();
    const double all = ask(context, nullptr) + voices();
    whisper_free(context);
    return all > 0.0 ? 0 : 1;
}
