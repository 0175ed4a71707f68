// korvane-bench-tokens: 5,000 words in a window without a display, shown by one of two means; a process each,
// so that memory counts.
//
//   pool       the token area as the window has it
//   repeater   the same tokens, all of them, by a Repeater in a Flow
//
// Prints, separated by blanks: milliseconds from the arrival of the words to the finished picture; the
// longest turn of the event loop in these, in milliseconds of the main thread's processor time, drawing
// included; frames a second while scrolling; milliseconds from the change of one word to its first new
// picture; megabytes that the words took.
#include <unistd.h>

#include <ctime>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickView>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Statistics.h"
#include "ui/words/WordFlow.h"
#include "ui/words/WordListModel.h"

using namespace korvane;

namespace {

constexpr int kWords = 5000;
constexpr int kScrolledFrames = 100;
constexpr int kChanges = 15;
constexpr QSize kWindow{520, 640};

constexpr const char* kRepeater = R"(
import QtQuick
import Korvane.Words
Flickable {
    id: area
    required property WordListModel words
    contentHeight: flow.height
    clip: true
    Flow {
        id: flow
        width: area.width
        spacing: 5
        Repeater {
            model: area.words
            delegate: WordToken {
                id: token
                required property var model
                text: token.model.text
                selected: token.model.selected
            }
        }
    }
})";

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Of processor time: what others do on the machine does not count.
double threadMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

class Scene {
  public:
    explicit Scene(bool pool) {
        view_.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        view_.setResizeMode(QQuickView::SizeRootObjectToView);
        view_.resize(kWindow);
        QQmlComponent component(view_.engine());
        const QUrl url(QStringLiteral("qrc:/qt/qml/Korvane/Words/WordArea.qml"));
        if (pool)
            component.loadUrl(url);
        else
            component.setData(kRepeater, QUrl(QStringLiteral("qrc:/repeater.qml")));
        area_ = component.createWithInitialProperties(
            {{QStringLiteral("words"), QVariant::fromValue(&model_)}}, view_.engine()->rootContext());
        if (!area_)
            throw std::runtime_error(component.errorString().toStdString());
        flow_ = area_->findChild<WordFlow*>();
        view_.setContent(url, nullptr, area_);
        QObject::connect(&view_, &QQuickWindow::frameSwapped, [this] { ++frames_; });
        fill({"first", "words", "so", "that", "fonts", "and", "types", "are", "loaded"});
        view_.show();
        nextFrame();
    }

    /// Runs the event loop until a frame is drawn that began after this call.
    void nextFrame() {
        const int before = frames_;
        view_.update();
        runUntil([&] { return frames_ > before; });
    }

    void showWords(double& shownMs, double& longestMs) {
        std::vector<std::string> words;
        for (int i = 0; i < kWords; ++i)
            words.push_back("word" + std::to_string(i * 7919 % 4001) +
                            std::string(static_cast<std::size_t>(i % 6), 'a'));
        QElapsedTimer timer;
        timer.start();
        const double before = threadMilliseconds();
        fill(words);
        longest_ = threadMilliseconds() - before;
        runUntil([&] { return !flow_ || flow_->isSettled(); });
        nextFrame();
        shownMs = milliseconds(timer);
        longestMs = longest_;
    }

    double scrolledFramesPerSecond() {
        QElapsedTimer timer;
        timer.start();
        for (int i = 1; i <= kScrolledFrames; ++i) {
            area_->setProperty("contentY", 1000.0 + 37.0 * i);
            nextFrame();
        }
        return kScrolledFrames / (milliseconds(timer) / 1e3);
    }

    double changeMs() {
        area_->setProperty("contentY", 0.0);
        nextFrame();
        std::vector<double> times;
        for (int i = 0; i < kChanges; ++i) {
            QElapsedTimer timer;
            timer.start();
            selected_.erase(i);
            model_.selectionChanged(i, i);
            nextFrame();
            times.push_back(milliseconds(timer));
            QDeadlineTimer rest(200);  // the change takes 120 ms to fade; the next one begins from rest
            runUntil([&] { return rest.hasExpired(); });
        }
        return bench::summarize(times).median;
    }

  private:
    void fill(const std::vector<std::string>& words) {
        segments_.clear();
        selected_.clear();
        for (const std::string& word : words) {
            selected_.insert(static_cast<int>(segments_.size()));
            segments_.emplace_back(word, 0.0, 1.0);
        }
        model_.wordsReplaced();
    }

    void runUntil(const std::function<bool()>& done) {
        const QDeadlineTimer limit(60'000);
        while (!done()) {
            if (limit.hasExpired())
                throw std::runtime_error("nothing is drawn");
            const double before = threadMilliseconds();
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            longest_ = std::max(longest_, threadMilliseconds() - before);
        }
    }

    std::vector<SpeechSegment> segments_;
    std::set<int> selected_;
    WordListModel model_{segments_, selected_};
    QQuickView view_;
    QObject* area_ = nullptr;
    WordFlow* flow_ = nullptr;
    int frames_ = 0;
    double longest_ = 0.0;
};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const std::string means = argc == 2 ? argv[1] : "";
    if (means != "pool" && means != "repeater") {
        std::fputs("Usage: korvane-bench-tokens pool|repeater\n", stderr);
        return 2;
    }
    try {
        Scene scene(means == "pool");
        const double before = residentMegabytes();
        double shown = 0.0;
        double longest = 0.0;
        scene.showWords(shown, longest);
        const double memory = residentMegabytes() - before;
        const double rate = scene.scrolledFramesPerSecond();
        std::printf("%.3f %.3f %.3f %.3f %.3f\n", shown, longest, rate, scene.changeMs(), memory);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
