#include "platform/speech/pocketsphinx/PocketSphinxDecoder.h"

#include <pocketsphinx.h>

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/speech/SpeechRecognizer.h"
#include "platform/speech/pocketsphinx/LibraryGuard.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

/// What is fed between two looks at the stop token: 0.13 s of sound, about 15 ms of work.
constexpr std::size_t chunkSamples = 2048;

RecognitionError failure(const std::string& what, const PocketSphinxModel& model) {
    const auto said = libraryComplaint();
    return RecognitionError(what + " the model in '" + model.folder.string() + "'" +
                            (said.empty() ? "" : ": " + said) + ". Install the model again.");
}

}  // namespace

struct PocketSphinxDecoder::Library {
    explicit Library(PocketSphinxModel from) : model(std::move(from)) {}
    ~Library() {
        // After an abandoned call the library's memory is in no state to be freed.
        if (decoder && !abandoned)
            ps_free(decoder);
        if (settings)
            cmd_ln_free_r(settings);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Call>
    void run(Call call) {
        if (guardedLibraryCall(call))
            return;
        abandoned = true;
        throw failure("PocketSphinx can't work with", model);
    }

    const PocketSphinxModel model;
    cmd_ln_t* settings = nullptr;
    ps_decoder_t* decoder = nullptr;
    bool abandoned = false;
};

PocketSphinxDecoder::PocketSphinxDecoder(std::unique_ptr<Library> library) : library_(std::move(library)) {}

PocketSphinxDecoder::~PocketSphinxDecoder() = default;

std::unique_ptr<PocketSphinxDecoder> PocketSphinxDecoder::load(const PocketSphinxModel& model,
                                                               const std::stop_token& stop) {
    model.check();
    takeOverLibraryErrors();
    auto library = std::make_unique<Library>(model);
    const std::string acousticModel = model.acousticModel.string();
    const std::string languageModel = model.languageModel.string();
    const std::string dictionary = model.dictionary.string();
    const std::string rate = std::to_string(model.rateHz);

    static std::mutex oneAtATime;  // the library's initialisation shares tables
    const std::lock_guard lock(oneAtATime);
    // Whoever was cancelled while others loaded needn't load any more, and hold up those behind.
    checkCancelled(stop);
    // Only what differs from the defaults, which did best. Silence must stay in: the library's own way of
    // leaving it out makes word times seconds wrong.
    const bool returned = guardedLibraryCall([&] {
        library->settings =
            cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", acousticModel.c_str(), "-lm", languageModel.c_str(),
                        "-dict", dictionary.c_str(), "-samprate", rate.c_str(), "-remove_silence", "no",
                        "-remove_noise", "yes", nullptr);
        library->decoder = library->settings ? ps_init(library->settings) : nullptr;
    });
    if (!returned || !library->decoder) {
        library->abandoned = true;
        throw failure("PocketSphinx can't load", model);
    }
    return std::unique_ptr<PocketSphinxDecoder>(new PocketSphinxDecoder(std::move(library)));
}

std::vector<HeardEntry> PocketSphinxDecoder::recognize(std::span<const std::int16_t> samples,
                                                       const std::stop_token& stop) {
    auto* const decoder = library_->decoder;
    // A new stream for each utterance: without it frames would be counted from the first one on.
    library_->run([&] {
        ps_start_stream(decoder);
        ps_start_utt(decoder);
    });
    for (std::size_t begin = 0; begin < samples.size(); begin += chunkSamples) {
        checkCancelled(stop);
        const auto chunk = samples.subspan(begin, std::min(chunkSamples, samples.size() - begin));
        library_->run([&] { ps_process_raw(decoder, chunk.data(), chunk.size(), FALSE, FALSE); });
    }
    checkCancelled(stop);
    library_->run([&] { ps_end_utt(decoder); });
    checkCancelled(stop);

    std::vector<HeardEntry> heard;
    for (auto* segment = ps_seg_iter(decoder); segment; segment = ps_seg_next(segment)) {
        HeardEntry entry{ps_seg_word(segment), 0, 0};
        ps_seg_frames(segment, &entry.firstFrame, &entry.lastFrame);
        heard.push_back(std::move(entry));
    }
    return heard;
}

}  // namespace korvane
