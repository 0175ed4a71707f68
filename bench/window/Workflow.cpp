// The steps of the work, from a video to chosen words, with the main thread under watch.
#include <QUrl>
#include <stdexcept>

#include "bench/window/Desk.h"
#include "bench/window/Frame.h"
#include "bench/window/Jobs.h"
#include "bench/window/Transcript.h"
#include "ui/words/WordFlow.h"

namespace korvane::bench {
namespace {

std::vector<SpeechSegment> manyWords(int count) {
    std::vector<SpeechSegment> words;
    for (int i = 0; i < count; ++i)
        words.emplace_back(
            "word" + std::to_string(i * 7919 % 4001) + std::string(static_cast<std::size_t>(i % 6), 'a'),
            0.3 * i, 0.3 * i + 0.25);
    return words;
}

void load(Desk& desk, const std::string& video) {
    print(desk.watch("load", [&] { openVideo(desk, video); }));
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
    print(desk.watch("transcription", [&] { transcribe(desk, kListeningLimitSeconds); }));
    print("seconds", static_cast<double>(timer.elapsed()) / 1e3);
    print("words", static_cast<double>(desk.view().segments().size()));
    choose(desk);
}

void measureWords(const std::string& video, int words) {
    Desk desk(saying(manyWords(words)));
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
