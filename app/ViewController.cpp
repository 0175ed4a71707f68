#include "app/ViewController.h"

#include <QFile>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QUrl>
#include <stdexcept>
#include <utility>

#include "app/ControlAccessibility.h"
#include "app/StoredSpeechModels.h"
#include "app/UnusableSpeechModels.h"
#include "platform/desktop/Compositor.h"
#include "platform/speech/InstalledSpeechEngines.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

/// For panels that the toolkit draws: the window's night blue, as opaque as widgets need it.
QPalette panelPalette() {
    const QColor text(235, 239, 247);
    const QColor faint(140, 150, 172);
    QPalette palette(Theme::bgBottom().lighter(135), Theme::bgBottom());
    palette.setColor(QPalette::Base, Theme::bgTop());
    palette.setColor(QPalette::AlternateBase, Theme::cardFill());
    palette.setColor(QPalette::ToolTipBase, Theme::cardFill());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::BrightText, QPalette::HighlightedText})
        palette.setColor(role, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, Theme::accentLo());
    palette.setColor(QPalette::Link, Theme::accent());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint.darker(140));
    return palette;
}

std::unique_ptr<SpeechModelServices> speechModelsHere() {
    if (whisperCommand().empty())
        return std::make_unique<UnusableSpeechModels>();
    return std::make_unique<StoredSpeechModels>(StandardFolders::of(processEnvironment()));
}

}  // namespace

ViewController::ViewController() : ViewController(makeInstalledSpeechEngines()) {}

ViewController::ViewController(std::unique_ptr<SpeechRecognizerRegistry> recognizers)
    : recognizers_(std::move(recognizers)),
      filePanels_(panelPalette()),
      frame_(settings_, isCompositorRunning) {}

ViewController::~ViewController() = default;

void ViewController::viewDidLoad() {
    contentView_ = std::make_unique<ContentView>(ContentView::Dependencies{
        .mainQueue = mainQueue_,
        .defaults = defaults_,
        .filePanels = filePanels_,
        .videoProcessor = std::make_unique<VideoProcessor>(mainQueue_),
        .speechService = std::make_unique<SpeechService>(mainQueue_, authorization_, *recognizers_),
        .videoEditor = std::make_unique<VideoEditor>(mainQueue_, silentLog()),
        .makePlayer = [this](std::shared_ptr<PlayerItem> item) { return makePlayer(std::move(item)); },
        .announcements = {.isInFront = [this] { return window_ && window_->isActive(); },
                          .notify = [this](const QString& summary,
                                           const QString& body) { notifications_.show(summary, body); },
                          .showInFolder = [this](const auto& file) { fileManager_.show(file); }},
        .speechModels = speechModelsHere()});

    engine_ = std::make_unique<QQmlEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
    QQmlComponent component(engine_.get(), QUrl(QStringLiteral("qrc:/qt/qml/Korvane/App/Main.qml")));
    std::unique_ptr<QObject> root;
    installControlAccessibility();  // the toolkit's own came with the component; the last one is asked first
    if (component.isReady())
        root.reset(component.createWithInitialProperties(
            {{QStringLiteral("view"), QVariant::fromValue(contentView_.get())},
             {QStringLiteral("frame"), QVariant::fromValue(&frame_)}}));
    window_.reset(qobject_cast<QQuickWindow*>(root.get()));
    if (!window_)
        throw std::runtime_error("The window can't be made: " + component.errorString().toStdString());
    std::ignore = root.release();
    prefetchOnceDrawn();
}

void ViewController::viewDidAppear() {
    if (!window_)
        return;
    settings_.takeAnswer();
    frame_.setWindow(window_.get());
    filePanels_.setWindow(window_.get());
}

void ViewController::openVideo(const std::filesystem::path& path) {
    contentView_->openDroppedFile(QUrl::fromLocalFile(
        QFile::decodeName(QByteArray::fromStdString(std::filesystem::absolute(path).string()))));
}

std::shared_ptr<PreviewPlayer> ViewController::makePlayer(std::shared_ptr<PlayerItem> item) {
    // Nobody needs a connection to the sound server before.
    if (!sound_)
        sound_ = std::make_unique<PulseOutputFactory>();
    return realPreviewPlayers(mainQueue_, playbackClock_, *sound_)(std::move(item));
}

void ViewController::prefetchOnceDrawn() {
    // The picture comes first: reading the fonts would take half of a small machine.
    connect(
        window_.get(), &QQuickWindow::frameSwapped, this,
        [this] { contentView_->styleEditor()->prefetchFonts(); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

}  // namespace korvane
