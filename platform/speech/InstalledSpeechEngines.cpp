#include "platform/speech/InstalledSpeechEngines.h"

#include <utility>
#include <vector>

#if KORVANE_HAS_POCKETSPHINX
#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"
#endif

namespace korvane {

std::unique_ptr<SpeechRecognizerRegistry> makeInstalledSpeechEngines() {
    std::vector<std::unique_ptr<SpeechEngine>> engines;
#if KORVANE_HAS_POCKETSPHINX
    engines.push_back(std::make_unique<PocketSphinxEngine>(
        PocketSphinxModels(StandardFolders::of(processEnvironment()), KORVANE_POCKETSPHINX_MODELS)));
#endif
    return std::make_unique<SpeechRecognizerRegistry>(std::move(engines));
}

}  // namespace korvane
