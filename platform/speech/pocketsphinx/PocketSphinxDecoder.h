// One decoder of the PocketSphinx library, owned. The library's headers stay in its source file.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/speech/pocketsphinx/PocketSphinxModel.h"

namespace korvane {

/// A dictionary entry that was heard, fillers included, in frames of 10 ms, both ends inclusive.
struct HeardEntry {
    std::string entry;
    int firstFrame = 0;
    int lastFrame = 0;
};

/// Lives on one thread. Several decoders may work at once.
class PocketSphinxDecoder {
  public:
    /// Loads the model: about 0.3 s and 110 MB, uninterruptible. One at a time; the others wait.
    /// \throws RecognitionError when it can't be loaded, CancellationError when a stop was requested before
    /// its turn.
    static std::unique_ptr<PocketSphinxDecoder> load(const PocketSphinxModel& model,
                                                     const std::stop_token& stop);
    ~PocketSphinxDecoder();
    PocketSphinxDecoder(const PocketSphinxDecoder&) = delete;
    PocketSphinxDecoder& operator=(const PocketSphinxDecoder&) = delete;

    /// Recognises one utterance; its last part, about 3 % of its length, is uninterruptible.
    /// \throws CancellationError once a stop is requested (the decoder is then only good for being
    ///         destroyed), RecognitionError when the library gives up.
    std::vector<HeardEntry> recognize(std::span<const std::int16_t> samples, const std::stop_token& stop);

  private:
    struct Library;
    explicit PocketSphinxDecoder(std::unique_ptr<Library> library);
    std::unique_ptr<Library> library_;
};

}  // namespace korvane
