// What each command does, with everything it needs handed to it. All of it runs on a worker; progress and
// diagnostic lines travel to the main thread by themselves.
#pragma once

#include <filesystem>
#include <stop_token>
#include <string>

#include "cli/Arguments.h"
#include "cli/Console.h"
#include "editor/DiagnosticLog.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/tasks/MainQueue.h"

namespace korvane::cli {

/// Lent for the time of a command.
struct CommandContext {
    MainQueue& queue;
    Console& console;  ///< touched only in work that is posted to `queue`
    SpeechRecognizerRegistry& recognizers;
    UserDefaults& defaults;
    DiagnosticLog log;
};

/// What a finished command has to say.
struct CommandOutput {
    std::string result;  ///< for standard output; whole lines
    std::string note;    ///< one line for standard error, or empty
};

/// \throws UsageError, Failure, CancellationError, or a service's own error.
CommandOutput runLanguages(const CommandContext& context);
CommandOutput runTranscribe(const TranscribeRequest& request, const CommandContext& context,
                            const std::stop_token& stop);
CommandOutput runReel(const ReelRequest& request, const CommandContext& context, const std::stop_token& stop);
CommandOutput runExport(const ExportRequest& request, const CommandContext& context,
                        const std::stop_token& stop);

}  // namespace korvane::cli
