#include "platform/speech/InstalledSpeechEngines.h"

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "platform/models/SpeechModelStore.h"
#include "platform/models/VoiceModelFile.h"
#include "platform/speech/whisper/WhisperEngine.h"

#if KORVANE_HAS_POCKETSPHINX
#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"
#endif

namespace korvane {
namespace {

constexpr const char* whisperName = "whisper";
constexpr const char* pocketSphinxName = "pocketsphinx";

void check(const SpeechChoice& choice) {
    if (!choice.engine)
        return;
    if (*choice.engine != whisperName && *choice.engine != pocketSphinxName)
        throw RecognitionError("There is no engine \"" + *choice.engine +
                               "\"; there are whisper and pocketsphinx.");
    if (choice.model && *choice.engine != whisperName)
        throw RecognitionError("A model can be chosen for the engine whisper only.");
}

/// A damaged one where there is no whole one: the engine says why it does without.
std::optional<std::filesystem::path> voiceModelOf(const SpeechModelStore& store) {
    for (const auto& model : store.voiceModels())
        return model.file;
    for (const auto& file : store.unusable()) {
        if (looksLikeVoiceModel(file.file))
            return file.file;
    }
    return std::nullopt;
}

std::unique_ptr<SpeechEngine> makeWhisper(const SpeechChoice& choice, const SpeechLog& log) {
    const SpeechModelStore store(StandardFolders::of(processEnvironment()));
    FindWhisperModel find = [store] { return store.inUse(); };
    if (choice.model)
        find = [model = store.resolve(*choice.model)] { return std::optional(model); };
    auto settings = whisperSettingsHere();
    settings.findVoiceModel = [store] { return voiceModelOf(store); };
    if (log)
        settings.log = log;
    return std::make_unique<WhisperEngine>(std::move(find), std::move(settings));
}

}  // namespace

std::unique_ptr<SpeechRecognizerRegistry> makeInstalledSpeechEngines(const SpeechChoice& choice,
                                                                     const SpeechLog& log) {
    check(choice);
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    if (!choice.engine || *choice.engine == whisperName)
        engines.push_back(makeWhisper(choice, log));
#if KORVANE_HAS_POCKETSPHINX
    // Who names a model means that one and no other engine.
    if (!choice.model && (!choice.engine || *choice.engine == pocketSphinxName))
        engines.push_back(std::make_unique<PocketSphinxEngine>(
            PocketSphinxModels(StandardFolders::of(processEnvironment()), KORVANE_POCKETSPHINX_MODELS)));
#endif
    return std::make_unique<SpeechRecognizerRegistry>(std::move(engines));
}

}  // namespace korvane
