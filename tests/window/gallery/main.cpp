// Puts the real window into every state that it can have, with services that do as they are told, and keeps a
// picture of each: korvane-gallery FOLDER [STATE...]. Ends with 1 when a state can't be reached or the screen
// complained.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <cstdio>
#include <fstream>
#include <map>

#include "app/WindowFrame.h"
#include "tests/app/ScreenFixture.h"

namespace korvane {
namespace {

int complaints = 0;

void complain(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (text.contains(QLatin1String("propagateSizeHints")))
        return;  // a screen that is only memory says so to every window
    ++complaints;
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

const char* const kSpoken =
    "So today I want to show you how a long talk becomes a short reel in less than a minute. First you load "
    "the video, "
    "then you choose the language, and then you leave out every word that nobody needs. What is left is cut "
    "exactly at "
    "the words, joined without clicks, and written over the picture, one line after the other. That is all "
    "there is.";
const char* const kMixed =
    "Hello שלום מה שלומך today مرحبا بالعالم and 你好 世界 こんにちは 世界 привіт світ Grüße aus Köln où "
    "êtes-vous "
    "¿qué tal? naïve façade 🎬 done";

/// One window with its screen, from nothing.
class Stage {
  public:
    explicit Stage(const SubtitleSettings& style = {}, ContentView::Date now = {}) : now_(now) {
        style.save(defaults_);
        script_->extract = [this](const auto&, const OnProgress& onProgress, const std::stop_token& stop) {
            onProgress(extracted);
            extraction.pass(stop);
            std::ofstream(folder_.path() / "sound.m4a") << "sound";
            return ExtractedAudio{folder_.path() / "sound.m4a", 60.0};
        };
        script_->recognise = [this](const auto&, double, const Locale& locale, const OnProgress& onProgress,
                                    const std::stop_token& stop) {
            onProgress(recognised);
            recognition.pass(stop);
            if (isRecognizerMissing)
                throw SpeechError::recognizerUnavailable(locale);
            if (!failure.empty())
                throw std::runtime_error(failure);
            return wordsOf(text);
        };
        view = std::make_unique<ContentView>(ContentView::Dependencies{
            .mainQueue = queue_,
            .defaults = defaults_,
            .filePanels = panels_,
            .videoProcessor = std::make_unique<ScriptedVideoProcessor>(queue_, script_),
            .speechService =
                std::make_unique<ScriptedSpeechService>(queue_, authorization_, registry_, script_),
            .videoEditor = std::make_unique<VideoEditor>(queue_, silentLog()),
            .now = [this] { return now_; },
            .speechModels = std::make_unique<ScriptedModels>(models)});
        engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Korvane/App/Main.qml")));
        window.reset(qobject_cast<QQuickWindow*>(component.createWithInitialProperties(
            {{QStringLiteral("view"), QVariant::fromValue(view.get())},
             {QStringLiteral("frame"), QVariant::fromValue(&frame_)}})));
        frame_.setWindow(window.get());
        view->styleEditor()->prefetchFonts();
    }
    ~Stage() {
        window.reset();
        view.reset();  // what still runs ends here, while what it uses is there
    }

    void load(const char* name = "how a talk becomes a reel.mp4") {
        const auto file = folder_.path() / name;
        std::ofstream(file) << "video";
        ContentViewPeer(*view).setURL(file);
    }
    /// Runs the loop until it is so.
    void until(const std::function<bool()>& condition) {
        if (!QTest::qWaitFor(condition, 10'000))
            complain(QtWarningMsg, {}, QStringLiteral("A state could not be reached."));
    }
    void transcribe() {
        view->selectLanguage(1);
        view->startTranscription();
    }
    void transcribeAll() {
        transcribe();
        extraction.open();
        recognition.open();
        until([this] { return !view->isProcessing(); });
    }
    void say(const std::string& spoken) {
        text = spoken;
        load();
        transcribeAll();
    }
    void pass(int seconds) { now_ += std::chrono::seconds(seconds); }

    QQuickItem* item(const char* name) const { return itemIn(window->contentItem(), QLatin1String(name)); }
    void click(QQuickItem* target) const {
        if (!target)
            return complain(QtWarningMsg, {}, QStringLiteral("What was to be clicked isn't there."));
        const QPointF middle(target->width() / 2, target->height() / 2);
        QTest::mouseClick(window.get(), Qt::LeftButton, {}, target->mapToScene(middle).toPoint());
    }

    std::string text = kSpoken;
    std::string failure;
    bool isRecognizerMissing = false;
    double extracted = 0.6;
    double recognised = 0.4;
    Gate extraction;
    Gate recognition;
    std::shared_ptr<ModelsScript> models = std::make_shared<ModelsScript>();
    Gate download;
    std::unique_ptr<ContentView> view;
    std::unique_ptr<QQuickWindow> window;
    QSize size{1180, 800};

  private:
    static QQuickItem* itemIn(QQuickItem* item, QLatin1String name) {
        if (item->objectName() == name)
            return item;
        for (QQuickItem* child : item->childItems())
            if (QQuickItem* found = itemIn(child, name))
                return found;
        return nullptr;
    }
    static Words wordsOf(const std::string& spoken) {
        Words words;
        std::istringstream stream(spoken);
        std::string word;
        for (double at = 0.0; stream >> word; at += 0.3)
            words.emplace_back(word, at, at + 0.25);
        return words;
    }

    ContentView::Date now_;
    TemporaryFolder folder_;
    QtMainQueue queue_;
    MemoryUserDefaults defaults_;
    ScriptedPanels panels_;
    NeverAsked authorization_;
    SpeechRecognizerRegistry registry_{{}};
    std::shared_ptr<Script> script_ = std::make_shared<Script>();
    DesktopSettings settings_;
    WindowFrame frame_{settings_, [] { return false; }};
    QQmlEngine engine_;
};

using Scene = std::function<void(Stage&)>;

/// The sheet of speech models, opened as a person does it.
void openModels(Stage& stage) {
    stage.window->setMinimumSize({});
    stage.window->resize(stage.size);
    stage.window->show();
    stage.until([&] { return stage.window->isExposed(); });
    stage.click(stage.item("speechModels"));
    stage.until([&] { return stage.view->speechModels()->isKnown(); });
}

/// One model comes, and has come so far.
void downloadModel(Stage& stage, std::uint64_t bytes) {
    stage.models->download = [&stage, bytes](const std::string& id, const auto& report, const auto& stop) {
        stage.models->setPart(id, bytes);
        report(ModelsScript::report(bytes, 81'768'585));
        stage.download.pass(stop);
    };
    openModels(stage);
    stage.view->speechModels()->act(QStringLiteral("base"));
    stage.until([&] { return stage.view->speechModels()->rows()->rows()[1].fraction > 0.1; });
}

void withWords(Stage& stage) {
    stage.say(kSpoken);
    for (const int index : {2, 3, 17, 18, 19, 40})
        stage.view->toggleWord(index);
}

const std::map<std::string, Scene>& scenes() {
    static const std::map<std::string, Scene> all{
        {"01-fresh", [](Stage&) {}},
        {"02-loaded", [](Stage& s) { s.load(); }},
        {"03-extracting",
         [](Stage& s) {
             s.load();
             s.transcribe();
             s.until([&] { return s.view->overallProgress() > 0.1; });
             s.pass(8);
         }},
        {"04-transcribing",
         [](Stage& s) {
             s.load();
             s.extraction.open();
             s.transcribe();
             s.pass(150);
             s.until([&] { return s.view->overallProgress() > 0.5; });
         }},
        {"05-words", withWords},
        {"06-one-word", [](Stage& s) { s.say("Hello"); }},
        {"07-three-thousand-words",
         [](Stage& s) {
             std::string spoken;
             for (int i = 0; i < 50; ++i)
                 spoken += std::string(kSpoken) + " ";
             s.say(spoken);
         }},
        {"08-mixed-scripts", [](Stage& s) { s.say(kMixed); }},
        {"09-no-speech", [](Stage& s) { s.say(""); }},
        {"10-long-error",
         [](Stage& s) {
             s.failure =
                 "Export failed: the file “a very long name of a recording that somebody made on a sunny "
                 "afternoon, take 27, final, really final.mp4” can’t be read any further at 00:13:37, "
                 "because "
                 "the disk that it lies on was taken out. Put it back in, or copy the video to this computer "
                 "first. Nothing was written, and the words that were found so far are kept. ";
             s.failure += s.failure;
             s.load(
                 "a very long name of a recording that somebody made on a sunny afternoon, take 27, "
                 "final.mp4");
             s.transcribeAll();
         }},
        {"11-without-shadow",
         [](Stage& s) {
             withWords(s);
             auto style = s.view->subtitleSettings();
             style.hasShadow = false;
             style.setTextColor({1.0, 0.83, 0.1, 1.0});
             s.view->setSubtitleSettings(style);
         }},
        {"12-smallest",
         [](Stage& s) {
             s.size = {960, 680};
             withWords(s);
         }},
        {"13-full-hd",
         [](Stage& s) {
             s.size = {1920, 1080};
             withWords(s);
         }},
        {"14-4k",
         [](Stage& s) {
             s.size = {3840, 2160};
             withWords(s);
         }},
        {"15-languages",
         [](Stage& s) {
             s.load();
             s.window->resize(s.size);
             s.window->show();
             s.until([&] { return s.window->isExposed(); });
             s.click(s.item("languagePicker"));
         }},
        {"16-smallest-error",
         [](Stage& s) {
             s.size = {960, 680};
             s.failure = "The source video has no audio track.";
             s.load();
             s.transcribeAll();
         }},
        {"17-keyboard",
         [](Stage& s) {
             withWords(s);
             s.window->resize(s.size);
             s.window->show();
             s.until([&] { return s.window->isExposed(); });
             s.item("flow")->forceActiveFocus(Qt::TabFocusReason);
             for (int i = 0; i < 3; ++i)
                 QTest::keyClick(s.window.get(), Qt::Key_Right);
         }},
        {"18-no-recogniser",
         [](Stage& s) {
             s.isRecognizerMissing = true;
             s.load();
             s.transcribeAll();
         }},
        {"19-models", openModels},
        {"20-models-downloading", [](Stage& s) { downloadModel(s, 31'000'000); }},
        {"21-models-stopped",
         [](Stage& s) {
             downloadModel(s, 51'000'000);
             s.view->speechModels()->act(QStringLiteral("base"));
             s.until([&] { return s.view->speechModels()->rows()->rows()[1].stopped; });
         }},
        {"22-models-installed",
         [](Stage& s) {
             s.models->install("base");
             s.models->install("small", false);
             openModels(s);
         }},
        {"23-models-error",
         [](Stage& s) {
             s.size = {960, 680};
             s.models->install("tiny");
             s.models->download = [](const auto&, const auto&, const auto&) {
                 throw std::runtime_error(
                     "There is not enough room for “Whisper large-v3-turbo”: 574 MB are needed in "
                     "/home/somebody/.local/share/korvane/models/whisper, and 212 MB are free.");
             };
             openModels(s);
             s.view->speechModels()->act(QStringLiteral("turbo"));
             s.until([&] { return !s.view->speechModels()->problem().isEmpty(); });
         }},
        {"24-models-removing",
         [](Stage& s) {
             s.models->install("base");
             openModels(s);
             s.until([&] { return s.item("act base") && s.item("act base")->isVisible(); });
             QTest::qWait(200);
             s.click(s.item("act base"));
         }},
        {"25-models-keyboard",
         [](Stage& s) {
             s.models->install("tiny");
             s.models->add = [&s](const auto& report, const auto& stop) {
                 report(0.4);
                 s.download.pass(stop);
             };
             openModels(s);
             QTest::qWait(200);
             s.view->speechModels()->addDropped({QUrl::fromLocalFile(QStringLiteral("/ggml-medium.bin"))});
             s.until([&] { return s.view->speechModels()->addingFraction() > 0.3; });
             QTest::keyClick(s.window.get(), Qt::Key_Tab);
         }},
        {"26-models-damaged",
         [](Stage& s) {
             s.models->install("tiny");
             s.models->damage("base", "\"ggml-base-q8_0.bin\" is cut off: it isn't all of a model.");
             s.models->damage("small",
                              "\"ggml-small-q8_0.bin\" has weights of a kind that this program doesn't know.",
                              false);
             s.models->change([](auto& found) {
                 found.models.push_back(
                     ModelsScript::offer("mine", "ggml-some-model-of-my-own.bin", 0, 0, 0));
                 found.models.back().fault =
                     "\"ggml-some-model-of-my-own.bin\" is a model for English only; one for all languages "
                     "is needed.";
                 found.models.back().isListed = false;
                 found.models.back().isOwn = true;
             });
             openModels(s);
         }},
        {"27-models-voices",
         [](Stage& s) {
             s.models->install("base");
             s.models->addVoices();
             openModels(s);
         }},
    };
    return all;
}

bool isWanted(const std::string& name, const QStringList& wanted) {
    return wanted.isEmpty() || wanted.contains(QString::fromStdString(name));
}

void keepPicture(const std::string& name, const Scene& scene, const QDir& folder) {
    Stage stage;
    scene(stage);
    stage.window->setMinimumSize({});  // the screen that is drawn on may be smaller
    stage.window->resize(stage.size);
    stage.window->show();
    stage.until([&] { return stage.window->isExposed(); });
    constexpr int springsMs = 700;  // until everything that moves has come to rest
    QTest::qWait(springsMs);
    const QImage picture = stage.window->grabWindow();
    const QString file = folder.filePath(QString::fromStdString(name) + QStringLiteral(".png"));
    if (picture.isNull() || !picture.save(file))
        complain(QtWarningMsg, {}, QStringLiteral("%1 can't be written.").arg(file));
}

}  // namespace
}  // namespace korvane

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QFont font = QApplication::font();
    font.setFamilies({QStringLiteral("Inter"), QStringLiteral("Noto Color Emoji")});
    QApplication::setFont(font);
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.isEmpty()) {
        std::fputs("usage: korvane-gallery FOLDER [STATE...]\n", stderr);
        return 2;
    }
    const QDir folder(arguments.front());
    folder.mkpath(QStringLiteral("."));
    qInstallMessageHandler(korvane::complain);
    for (const auto& [name, scene] : korvane::scenes())
        if (korvane::isWanted(name, arguments.mid(1)))
            korvane::keepPicture(name, scene, folder);
    return korvane::complaints == 0 ? 0 : 1;
}
