// What the person asked for, read from the command's arguments. Nothing here touches a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/TranscriptFormat.h"
#include "cli/WordSelection.h"
#include "platform/speech/InstalledSpeechEngines.h"

namespace korvane::cli {

/// Help for one command, or for the program when `topic` is empty.
struct HelpRequest {
    std::string topic;
};
struct VersionRequest {};
struct LanguagesRequest {};

struct TranscribeRequest {
    std::filesystem::path video;
    std::string language;                         ///< one of the nine identifiers
    std::optional<std::filesystem::path> output;  ///< none: standard output
    TranscriptFormat format = TranscriptFormat::text;
    SpeechChoice speech;
};

/// How the chosen words become a reel.
struct ReelOptions {
    std::filesystem::path output = "korvane_output.mp4";
    std::optional<std::filesystem::path> style;  ///< none: the saved style
    WordSpans selected;                          ///< empty: every word
    WordSpans dropped;
};

struct ReelRequest {
    std::filesystem::path video;
    std::string language;  ///< one of the nine identifiers
    ReelOptions reel;
    SpeechChoice speech;
};

struct ExportRequest {
    std::filesystem::path video;
    std::filesystem::path words;  ///< "-": standard input
    ReelOptions reel;
};

/// What to do with the models for speech recognition.
struct ModelsRequest {
    enum class Action { list, install, remove, add, use, path } action = Action::list;
    std::string subject;  ///< an id, or the file to add; empty where none is needed
    std::string proxy;    ///< to install through; empty: the environment's
};

using Request = std::variant<HelpRequest, VersionRequest, LanguagesRequest, TranscribeRequest, ReelRequest,
                             ExportRequest, ModelsRequest>;

struct Invocation {
    Request request;
    bool quiet = false;
};

/// \param arguments  without the program's name.
/// \throws UsageError
Invocation parseArguments(const std::vector<std::string>& arguments);

}  // namespace korvane::cli
