// The steps of the work, from a video to chosen words, with the main thread under watch.
#include <QUrl>
#include <stdexcept>

#include "bench/window/Desk.h"
#include "bench/window/Frame.h"
#include "bench/window/Jobs.h"
#include "platform/speech/RecognitionWorkers.h"
#include "ui/words/WordFlow.h"

namespace korvane::bench {
namespace {

constexpr const char* kLocale = "en-US";

/// Says any number of words at once, whatever it hears.
class ManyWords final : public SpeechEngine {
  public:
    explicit ManyWords(int words) : words_(words) {}

    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override {
        return std::make_unique<Recognizer>(*this, locale);
    }
    SpeechSupport support(const Locale&) const override { return {true, "many words"}; }

  private:
    class Recognizer final : public SpeechRecognizer {
      public:
        Recognizer(ManyWords& engine, Locale locale) : engine_(engine), locale_(std::move(locale)) {}
        const Locale& locale() const override { return locale_; }
        bool isAvailable() const override { return true; }
        std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest&,
                                                         RecognitionHandler handler) override {
            return engine_.workers_.start(
                [count = engine_.words_](const std::stop_token&) { return made(count); }, std::move(handler));
        }

      private:
        static std::vector<RecognizedSegment> made(int count) {
            std::vector<RecognizedSegment> words;
            for (int i = 0; i < count; ++i)
                words.push_back({"word" + std::to_string(i * 7919 % 4001) +
                                     std::string(static_cast<std::size_t>(i % 6), 'a'),
                                 0.3 * i, 0.25});
            return words;
        }

        ManyWords& engine_;
        Locale locale_;
    };

    int words_;
    RecognitionWorkers workers_;
};

std::unique_ptr<SpeechRecognizerRegistry> saying(int words) {
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    engines.push_back(std::make_unique<ManyWords>(words));
    return std::make_unique<SpeechRecognizerRegistry>(std::move(engines));
}

void load(Desk& desk, const std::string& video) {
    for (std::size_t i = 0; i < ContentView::languages().size(); ++i)
        if (ContentView::languages()[i].id == kLocale)
            desk.view().selectLanguage(static_cast<int>(i));
    print(desk.watch(
        "load", [&] { desk.view().openDroppedFile(QUrl::fromLocalFile(QString::fromStdString(video))); }));
    if (!desk.view().hasVideo())
        throw std::runtime_error(desk.view().errorText().toStdString());
}

void transcribe(Desk& desk) {
    desk.click(desk.place(desk.item("transcribe")));
    desk.until([&] { return !desk.view().isProcessing(); }, 7200);
    if (desk.view().hasError())
        throw std::runtime_error(desk.view().errorText().toStdString());
}

void choose(Desk& desk) {
    print(desk.watch("None", [&] { desk.click(desk.place(desk.item("none"))); }));
    if (desk.view().hasSelection())
        throw std::runtime_error("None leaves words chosen");
    print(desk.watch("All", [&] { desk.click(desk.place(desk.item("all"))); }));
    print(desk.watch("toggling 60 words", [&] {
        const auto* flow = qobject_cast<WordFlow*>(&desk.item("flow"));
        for (int i = 0; i < 60 && i < desk.view().words()->rowCount(); ++i) {
            if (auto* token = flow->tokenOf(i))
                desk.click(desk.place(*token));
            desk.runFor(20);
        }
    }));
}

/// A size a frame, to and fro: each rearranges cards and words.
void resize(Desk& desk) {
    const QSize size = desk.window().size();
    double frames = 0.0;
    QElapsedTimer timer;
    print(desk.watch("resizing", [&] {
        const FrameCounter counter(desk.window());
        timer.start();
        for (int i = 1; i <= 120; ++i) {
            const int by = 4 * std::min(i, 120 - i);
            desk.window().resize(size.width() + by, size.height() + by / 2);
            const auto next = static_cast<qint64>(i * kFrameMs * 1e6);
            desk.until([&] { return timer.nsecsElapsed() >= next; });
        }
        frames = counter.frames() / (static_cast<double>(timer.nsecsElapsed()) / 1e9);
    }));
    print("resizing frames/s", frames);
}

}  // namespace

void measureTranscription(const std::string& video) {
    Desk desk;
    load(desk, video);
    print(desk.watch("stop", [&] {
        desk.click(desk.place(desk.item("transcribe")));
        desk.runFor(2000);
        desk.click(desk.place(desk.item("stopTranscription")));
        desk.until([&] { return !desk.view().isProcessing(); });
    }));
    QElapsedTimer timer;
    timer.start();
    print(desk.watch("transcription", [&] { transcribe(desk); }));
    print("seconds", static_cast<double>(timer.elapsed()) / 1e3);
    print("words", static_cast<double>(desk.view().segments().size()));
    choose(desk);
}

void measureWords(const std::string& video, int words) {
    Desk desk(saying(words));
    load(desk, video);
    print(desk.watch("arrival", [&] { transcribe(desk); }));
    if (static_cast<int>(desk.view().segments().size()) != words)
        throw std::runtime_error("words are missing");
    choose(desk);
    resize(desk);
    print(desk.watch("another video", [&] {
        desk.view().openDroppedFile(QUrl::fromLocalFile(QString::fromStdString(video)));
    }));
}

}  // namespace korvane::bench
