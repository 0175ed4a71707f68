#include "platform/speech/SpeechRecognizerRegistry.h"

#include <utility>

namespace korvane {

SpeechRecognizerRegistry::SpeechRecognizerRegistry(std::vector<std::unique_ptr<SpeechEngine>> engines)
    : engines_(std::move(engines)) {}

std::unique_ptr<SpeechRecognizer> SpeechRecognizerRegistry::makeRecognizer(const Locale& locale) const {
    for (const auto& engine : engines_) {
        if (auto recognizer = engine->makeRecognizer(locale))
            return recognizer;
    }
    return nullptr;
}

SpeechSupport SpeechRecognizerRegistry::support(const Locale& locale) const {
    if (engines_.empty())
        return {
            false,
            "This build has no speech engine; install the package libpocketsphinx-dev and build it again."};
    SpeechSupport missing;
    for (const auto& engine : engines_) {
        auto found = engine->support(locale);
        if (found.installed)
            return found;
        if (!missing.description.empty())
            missing.description += ' ';
        missing.description += found.description;
    }
    return missing;
}

}  // namespace korvane
