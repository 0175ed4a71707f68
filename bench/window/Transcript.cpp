#include "bench/window/Transcript.h"

#include <QDeadlineTimer>
#include <QUrl>
#include <stdexcept>
#include <utility>

#include "platform/speech/RecognitionWorkers.h"

namespace korvane::bench {
namespace {

constexpr const char* kLocale = "en-US";

class KnowsItBefore final : public SpeechEngine {
  public:
    explicit KnowsItBefore(std::vector<RecognizedSegment> words) : words_(std::move(words)) {}

    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override {
        return std::make_unique<Recognizer>(*this, locale);
    }
    SpeechSupport support(const Locale&) const override { return {true, "words known before"}; }

  private:
    class Recognizer final : public SpeechRecognizer {
      public:
        Recognizer(KnowsItBefore& engine, Locale locale) : engine_(engine), locale_(std::move(locale)) {}
        const Locale& locale() const override { return locale_; }
        bool isAvailable() const override { return true; }
        std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest&,
                                                         RecognitionHandler handler) override {
            return engine_.workers_.start([words = engine_.words_](const std::stop_token&) { return words; },
                                          std::move(handler));
        }

      private:
        KnowsItBefore& engine_;
        Locale locale_;
    };

    std::vector<RecognizedSegment> words_;
    RecognitionWorkers workers_;
};

}  // namespace

std::unique_ptr<SpeechRecognizerRegistry> saying(const std::vector<SpeechSegment>& words) {
    std::vector<RecognizedSegment> said;
    for (const SpeechSegment& word : words)
        said.push_back({word.text(), word.start(), word.end() - word.start()});
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    engines.push_back(std::make_unique<KnowsItBefore>(std::move(said)));
    return std::make_unique<SpeechRecognizerRegistry>(std::move(engines));
}

void openVideo(Desk& desk, const std::string& video) {
    for (std::size_t i = 0; i < ContentView::languages().size(); ++i)
        if (ContentView::languages()[i].id == kLocale)
            desk.view().selectLanguage(static_cast<int>(i));
    desk.view().openDroppedFile(QUrl::fromLocalFile(QString::fromStdString(video)));
    if (!desk.view().hasVideo())
        throw std::runtime_error(desk.view().errorText().toStdString());
}

void transcribe(Desk& desk, int limitSeconds) {
    const ContentView& view = desk.view();
    desk.click(desk.place(desk.item("transcribe")));
    const QDeadlineTimer limit(limitSeconds * 1000LL);
    desk.until([&] { return !view.isProcessing() || limit.hasExpired(); }, limitSeconds + 60);
    if (view.isProcessing())
        throw std::runtime_error("after " + std::to_string(limitSeconds) +
                                 " s the transcription still says: " + view.statusText().toStdString() + " " +
                                 view.percentText().toStdString());
    if (desk.view().hasError())
        throw std::runtime_error(desk.view().errorText().toStdString());
}

}  // namespace korvane::bench
