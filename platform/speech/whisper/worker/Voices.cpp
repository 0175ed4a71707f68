#include "platform/speech/whisper/worker/Voices.h"

#include <whisper.h>

#include <cmath>
#include <cstddef>
#include <span>

#include "platform/models/ModelError.h"
#include "platform/models/VoiceModelFile.h"
#include "platform/speech/whisper/WhisperProtocol.h"
#include "platform/speech/whisper/worker/MemoryWatch.h"
#include "platform/speech/whisper/worker/Model.h"

namespace korvane::whisper {

struct Voices::Library {
    ~Library() {
        if (context)
            whisper_vad_free(context);
    }
    whisper_vad_context* context = nullptr;
};

Voices::Voices(const std::string& path) : library_(std::make_unique<Library>()) {
    // The library believes what a file says about itself.
    try {
        readVoiceModel(path);
    } catch (const ModelError& error) {
        throw Failure(failure::voices, error.what());
    }
    auto settings = whisper_vad_default_context_params();
    settings.n_threads = 1;  // each frame waits for the one before, and is soon done
    forgetComplaints();
    library_->context = whisper_vad_init_from_file_with_params(path.c_str(), settings);
    if (!library_->context && hasMemoryRunOut())
        throw Failure(failure::memory, "There is not enough memory.");
    if (!library_->context)
        throw Failure(failure::voices, "The library can't load it.");
}

Voices::~Voices() = default;

std::string Voices::chancesIn(const std::vector<float>& samples) {
    const auto frames = (samples.size() + voiceFrame - 1) / voiceFrame;
    forgetComplaints();
    if (!whisper_vad_detect_speech(library_->context, samples.data(), static_cast<int>(samples.size())) ||
        static_cast<std::size_t>(whisper_vad_n_probs(library_->context)) != frames)
        throw hasMemoryRunOut() ? Failure(failure::memory, "There is not enough memory.")
                                : Failure(failure::voices, "The library gave up.");
    std::string chances;
    for (const float chance : std::span(whisper_vad_probs(library_->context), frames)) {
        if (!(chance >= 0.0F && chance <= 1.0F))
            throw Failure(failure::voices, "It answers with numbers that are none: its weights are damaged.");
        chances += static_cast<char>(static_cast<unsigned char>(std::lround(chance * 255.0F)));
    }
    return chances;
}

}  // namespace korvane::whisper
