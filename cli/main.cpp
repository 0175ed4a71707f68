// korvane-cli: the services of the program without a window. The main thread runs the event loop, prints, and
// watches for Ctrl-C; each command blocks on a worker.
#include <unistd.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <stop_token>

#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/Help.h"
#include "cli/Models.h"
#include "platform/defaults/FileUserDefaults.h"
#include "platform/process/ExitCode.h"
#include "platform/process/Process.h"
#include "platform/process/StopSignals.h"
#include "platform/process/UsageError.h"
#include "platform/speech/InstalledSpeechEngines.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/QtMainQueue.h"
#include "platform/tasks/RunOnWorker.h"

using namespace korvane;
using namespace korvane::cli;

namespace {

/// Only what draws text needs fonts; none needs a display.
std::unique_ptr<QCoreApplication> makeApplication(const Request& request, int& argc, char** argv) {
    const bool draws =
        std::holds_alternative<ReelRequest>(request) || std::holds_alternative<ExportRequest>(request);
    if (!draws)
        return std::make_unique<QCoreApplication>(argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const BorrowedRuntimeFolder borrowed;
    return std::make_unique<QGuiApplication>(argc, argv);
}

/// The engine and model that the person insists on, where the command recognises anything.
SpeechChoice speechChoiceOf(const Request& request) {
    if (const auto* reel = std::get_if<ReelRequest>(&request))
        return reel->speech;
    if (const auto* transcribe = std::get_if<TranscribeRequest>(&request))
        return transcribe->speech;
    return {};
}

struct Dispatch {
    const CommandContext& context;
    const std::stop_token& stop;

    CommandOutput operator()(const HelpRequest& request) const { return {helpText(request.topic), {}}; }
    CommandOutput operator()(const VersionRequest&) const { return {versionText(), {}}; }
    CommandOutput operator()(const LanguagesRequest&) const { return runLanguages(context); }
    CommandOutput operator()(const TranscribeRequest& request) const {
        return runTranscribe(request, context, stop);
    }
    CommandOutput operator()(const ReelRequest& request) const { return runReel(request, context, stop); }
    CommandOutput operator()(const ModelsRequest& request) const { return runModels(request, context, stop); }
    CommandOutput operator()(const ExportRequest& request) const { return runExport(request, context, stop); }
};

/// The person who asks twice doesn't want to wait: what could hang gets a moment to tidy up, no more.
void leaveSoon() {
    constexpr int patienceMs = 1000;
    QTimer::singleShot(patienceMs, [] { _exit(static_cast<int>(ExitCode::stopped)); });
}

DiagnosticLog diagnosticLog(MainQueue& queue, Console& console) {
    return [&queue, &console](const std::string& line) {
        queue.post([&console, line] { console.diagnostic(line); });
    };
}

/// The console's, so that it keeps out of the progress line and is silent when all else is.
SpeechLog speechLog(MainQueue& queue, Console& console) {
    return [&queue, &console](const std::string& sentence) {
        queue.post([&console, sentence] { console.note(sentence); });
    };
}

ExitCode run(const Invocation& invocation, Console& console) {
    QtMainQueue queue;
    std::stop_source source;
    const StopSignals signals(
        [&source](int count) { count == 1 ? void(source.request_stop()) : leaveSoon(); });
    FileUserDefaults defaults;
    try {
        const auto recognizers =
            makeInstalledSpeechEngines(speechChoiceOf(invocation.request), speechLog(queue, console));
        const CommandContext context{queue, console, *recognizers, defaults,
                                     invocation.quiet ? silentLog() : diagnosticLog(queue, console)};
        const auto output =
            runOnWorker<CommandOutput>(queue, source.get_token(), [&](const std::stop_token& stop) {
                return std::visit(Dispatch{context, stop}, invocation.request);
            });
        console.endProgress();
        console.result(output.result);
        if (!output.note.empty())
            console.note(output.note);
        return ExitCode::done;
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        // Whatever a stopped service fails with, it is a stop.
        if (source.stop_requested()) {
            console.error("Stopped.");
            // Everything temporary went with the worker. What is left would only be waited for: a speech
            // engine in the middle of loading its model can't be interrupted.
            std::fflush(nullptr);
            _exit(static_cast<int>(ExitCode::stopped));
        }
        console.error(error.what());
        if (const auto* failure = dynamic_cast<const Failure*>(&error); failure && !failure->hint().empty())
            console.errorHint(failure->hint());
        return ExitCode::failed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    StopSignals::hold();
    prepareProcess();
    Console console;
    try {
        const auto invocation = parseArguments({argv + 1, argv + argc});
        console.setQuiet(invocation.quiet);
        const auto application = makeApplication(invocation.request, argc, argv);
        settleLocale();
        return static_cast<int>(run(invocation, console));
    } catch (const UsageError& error) {
        console.error(error.what());
        return static_cast<int>(ExitCode::wrongUsage);
    } catch (const std::exception& error) {
        console.error(error.what());
        return static_cast<int>(ExitCode::failed);
    }
}
