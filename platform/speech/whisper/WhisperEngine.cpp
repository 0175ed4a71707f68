#include "platform/speech/whisper/WhisperEngine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/models/ControlGroup.h"
#include "platform/speech/whisper/MemoryPressure.h"
#include "platform/speech/whisper/PhysicalCores.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/speech/whisper/WhisperTranscription.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

/// What a multilingual model was trained on.
constexpr std::array<std::string_view, 99> languages{
    "en", "zh", "de", "es", "ru", "ko", "fr", "ja", "pt",  "tr", "pl", "ca", "nl", "ar", "sv", "it", "id",
    "hi", "fi", "vi", "he", "uk", "el", "ms", "cs", "ro",  "da", "hu", "ta", "no", "th", "ur", "hr", "bg",
    "lt", "la", "mi", "ml", "cy", "sk", "te", "fa", "lv",  "bn", "sr", "az", "sl", "kn", "et", "mk", "br",
    "eu", "is", "hy", "ne", "mn", "bs", "kk", "sq", "sw",  "gl", "mr", "pa", "si", "km", "sn", "yo", "so",
    "af", "oc", "ka", "be", "tg", "sd", "gu", "am", "yi",  "lo", "uz", "fo", "ht", "ps", "tk", "nn", "mt",
    "sa", "lb", "my", "bo", "tl", "mg", "as", "tt", "haw", "ln", "ha", "ba", "jw", "su"};

class WhisperRecognizer final : public SpeechRecognizer {
  public:
    WhisperRecognizer(Locale locale, std::string language, InstalledSpeechModel model, OpenRecording open,
                      WhisperKeeper& keeper, RecognitionWorkers& workers)
        : locale_(std::move(locale)),
          language_(std::move(language)),
          model_(std::move(model)),
          open_(std::move(open)),
          keeper_(keeper),
          workers_(workers) {}

    const Locale& locale() const override { return locale_; }

    bool isAvailable() const override {
        std::error_code ignored;
        return std::filesystem::is_regular_file(model_.file, ignored);
    }

    std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest& request,
                                                     RecognitionHandler handler) override {
        return workers_.start(
            [path = request.path, locale = locale_, language = language_, file = model_.file, open = open_,
             &keeper = keeper_](const std::stop_token& stop) {
                checkCancelled(stop);
                // The file first: a wrong one is told at once, without waiting for the model.
                const auto recording = open(path, SpeechWindow::rateHz, stop);
                WhisperKeeper::Loan loan(keeper, file, stop);
                return WhisperTranscription(loan, locale, language, stop).of(*recording);
            },
            std::move(handler));
    }

  private:
    const Locale locale_;
    const std::string language_;
    const InstalledSpeechModel model_;
    const OpenRecording open_;
    WhisperKeeper& keeper_;
    RecognitionWorkers& workers_;
};

}  // namespace

std::string whisperLanguage(const Locale& locale) {
    auto language = locale.identifier.substr(0, locale.identifier.find_first_of("-_"));
    return std::find(languages.begin(), languages.end(), language) == languages.end() ? "" : language;
}

WhisperSettings whisperSettingsHere() {
    WhisperSettings settings;
    settings.command = whisperCommand();
    settings.threads = physicalCores("/sys/devices/system/cpu", controlGroupLimits().processors);
    settings.useCard = whisperMayUseCard();
    settings.memoryIsShort = [] { return memoryIsShort(); };
    settings.log = [](const std::string& sentence) {
        std::fprintf(stderr, "korvane: %s\n", sentence.c_str());
    };
    return settings;
}

WhisperEngine::WhisperEngine(FindWhisperModel model, WhisperSettings settings, OpenRecording open)
    : model_(std::move(model)),
      hasWorker_(!settings.command.empty()),
      open_(std::move(open)),
      keeper_(std::move(settings)) {}

std::unique_ptr<SpeechRecognizer> WhisperEngine::makeRecognizer(const Locale& locale) {
    auto language = whisperLanguage(locale);
    if (!hasWorker_ || language.empty())
        return nullptr;
    auto model = model_();
    if (!model)
        return nullptr;
    return std::make_unique<WhisperRecognizer>(locale, std::move(language), std::move(*model), open_, keeper_,
                                               workers_);
}

SpeechSupport WhisperEngine::support(const Locale& locale) const {
    if (whisperLanguage(locale).empty())
        return {false, "Whisper doesn't know this language."};
    if (!hasWorker_)
        return {
            false,
            "This build comes without Whisper: ./run builds it anew with it where the library can be had."};
    const auto model = model_();
    if (!model)
        return {false, "Install a Whisper model: korvane-cli models list shows which there are."};
    return {true, model->name + ", " + model->file.string()};
}

}  // namespace korvane
