#include "cli/Arguments.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cli/LanguageNames.h"
#include "platform/process/OptionScanner.h"
#include "platform/process/UsageError.h"

namespace korvane::cli {
namespace {

using Value = OptionRule::Value;
using Strings = std::vector<std::string>;

constexpr OptionRule quietRule{'q', "quiet", Value::none};
constexpr OptionRule helpRule{'h', "help", Value::none};
constexpr OptionRule versionRule{'V', "version", Value::none};
constexpr OptionRule languageRule{'l', "language", Value::one};
constexpr OptionRule outputRule{'o', "output", Value::one};
constexpr OptionRule formatRule{'f', "format", Value::one};
constexpr OptionRule wordsRule{'w', "words", Value::one};
constexpr OptionRule styleRule{0, "style", Value::one};
constexpr OptionRule selectRule{'s', "select", Value::many};
constexpr OptionRule engineRule{0, "engine", Value::one};
constexpr OptionRule modelRule{0, "model", Value::one};
constexpr OptionRule proxyRule{0, "proxy", Value::one};
constexpr OptionRule dropRule{'d', "drop", Value::many};

struct CommandRules {
    std::string_view name;
    std::vector<OptionRule> rules;
};

const std::vector<CommandRules>& commands() {
    static const std::vector<CommandRules> all{
        {"reel",
         {quietRule, helpRule, versionRule, languageRule, outputRule, styleRule, selectRule, dropRule,
          engineRule, modelRule}},
        {"transcribe",
         {quietRule, helpRule, versionRule, languageRule, outputRule, formatRule, engineRule, modelRule}},
        {"export",
         {quietRule, helpRule, versionRule, wordsRule, outputRule, styleRule, selectRule, dropRule}},
        {"models", {quietRule, helpRule, versionRule, proxyRule}},
        {"languages", {quietRule, helpRule, versionRule}},
        {"help", {quietRule, helpRule, versionRule}},
    };
    return all;
}

std::filesystem::path onlyVideo(const Strings& operands, std::string_view command) {
    if (operands.empty())
        throw UsageError("Say which video: korvane-cli " + std::string(command) + " VIDEO ...");
    if (operands.size() > 1)
        throw UsageError("One video at a time: \"" + operands[1] + "\" is one argument too many.");
    if (operands.front().empty())
        throw UsageError("The name of the video is empty.");
    return operands.front();
}

std::string requiredLanguage(const ScannedArguments& scanned) {
    if (!scanned.has("language"))
        throw UsageError(
            "Say which language is spoken, such as --language en-US; korvane-cli languages lists them.");
    return languageNamed(scanned.value("language"));
}

SpeechChoice speechChoice(const ScannedArguments& scanned) {
    SpeechChoice choice;
    if (scanned.has("engine"))
        choice.engine = scanned.value("engine");
    if (scanned.has("model"))
        choice.model = scanned.value("model");
    if (choice.engine && *choice.engine != "whisper" && *choice.engine != "pocketsphinx")
        throw UsageError("There is no engine \"" + *choice.engine +
                         "\"; there are whisper and pocketsphinx.");
    if (choice.model && choice.engine == "pocketsphinx")
        throw UsageError("A model can be chosen for whisper only.");
    return choice;
}

WordSpans spans(const ScannedArguments& scanned, std::string_view option) {
    WordSpans all;
    const auto given = scanned.options.find(option);
    if (given == scanned.options.end())
        return all;
    for (const auto& text : given->second) {
        const auto some = parseWordSpans("--" + std::string(option), text);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

ReelOptions reelOptions(const ScannedArguments& scanned) {
    ReelOptions options;
    // What "-" means everywhere else can't be done; a file of that name is ./- as for any program.
    if (scanned.has("output") && scanned.value("output") == "-")
        throw UsageError("A reel can't be written to standard output; give the name of a file.");
    if (scanned.has("output"))
        options.output = scanned.value("output");
    if (scanned.has("style"))
        options.style = scanned.value("style");
    options.selected = spans(scanned, "select");
    options.dropped = spans(scanned, "drop");
    return options;
}

TranscribeRequest transcribeRequest(const ScannedArguments& scanned) {
    TranscribeRequest request;
    request.video = onlyVideo(scanned.operands, "transcribe");
    request.language = requiredLanguage(scanned);
    if (scanned.has("output") && scanned.value("output") != "-")
        request.output = scanned.value("output");
    request.speech = speechChoice(scanned);
    if (scanned.has("format")) {
        const auto format = transcriptFormatNamed(scanned.value("format"));
        if (!format)
            throw UsageError("There is no format \"" + scanned.value("format") +
                             "\"; there are text, json, srt and vtt.");
        request.format = *format;
        return request;
    }
    if (request.output) {
        const auto format = transcriptFormatOf(*request.output);
        if (!format)
            throw UsageError("The ending of \"" + request.output->string() +
                             "\" tells no format; use .txt, .json, .srt or .vtt, or say --format.");
        request.format = *format;
    }
    return request;
}

ExportRequest exportRequest(const ScannedArguments& scanned) {
    ExportRequest request;
    request.video = onlyVideo(scanned.operands, "export");
    if (!scanned.has("words"))
        throw UsageError("Say which words: --words WORDS.json, as korvane-cli transcribe writes it.");
    request.words = scanned.value("words");
    request.reel = reelOptions(scanned);
    return request;
}

ModelsRequest modelsRequest(const ScannedArguments& scanned) {
    using Action = ModelsRequest::Action;
    struct Rule {
        std::string_view name;
        Action action;
        std::string_view subject;  // what has to be named; empty: nothing
    };
    static constexpr Rule rules[] = {
        {"list", Action::list, ""},   {"install", Action::install, "ID"}, {"remove", Action::remove, "ID"},
        {"add", Action::add, "FILE"}, {"use", Action::use, "ID"},         {"path", Action::path, ""},
    };
    const auto& operands = scanned.operands;
    if (operands.empty())
        throw UsageError("Say what to do with the models: list, install, remove, add, use or path.");
    const auto* rule = std::find_if(std::begin(rules), std::end(rules),
                                    [&](const Rule& known) { return known.name == operands[0]; });
    if (rule == std::end(rules))
        throw UsageError("There is no \"" + operands[0] +
                         "\" for models; there are list, install, remove, add, use and path.");
    const std::string command = "korvane-cli models " + operands[0];
    const std::size_t expected = rule->subject.empty() ? 1 : 2;
    if (operands.size() < expected || (expected == 2 && operands[1].empty()))
        throw UsageError("Say which model: " + command + " " + std::string(rule->subject) +
                         "; korvane-cli models list shows them.");
    if (operands.size() > expected)
        throw UsageError(command + ": \"" + operands[expected] + "\" is one argument too many.");
    if (scanned.has("proxy") && rule->action != Action::install)
        throw UsageError("Only korvane-cli models install takes a --proxy.");
    return {rule->action, expected == 2 ? operands[1] : std::string(), scanned.value("proxy")};
}

Request commandRequest(std::string_view command, const ScannedArguments& scanned) {
    if (command == "reel")
        return ReelRequest{onlyVideo(scanned.operands, command), requiredLanguage(scanned),
                           reelOptions(scanned), speechChoice(scanned)};
    if (command == "transcribe")
        return transcribeRequest(scanned);
    if (command == "export")
        return exportRequest(scanned);
    if (command == "models")
        return modelsRequest(scanned);
    if (!scanned.operands.empty() && command == "languages")
        throw UsageError("korvane-cli languages takes no argument such as \"" + scanned.operands[0] + "\".");
    if (command == "languages")
        return LanguagesRequest{};
    if (scanned.operands.size() > 1)
        throw UsageError("korvane-cli help takes one command at a time.");
    return HelpRequest{scanned.operands.empty() ? std::string() : scanned.operands[0]};
}

// Global options may stand before the command.
std::size_t commandPosition(const Strings& arguments) {
    std::size_t position = 0;
    while (position < arguments.size() && arguments[position].size() > 1 && arguments[position][0] == '-' &&
           arguments[position] != "--")
        ++position;
    return position;
}

}  // namespace

Invocation parseArguments(const Strings& arguments) {
    const auto position = commandPosition(arguments);
    const auto split = arguments.begin() + static_cast<std::ptrdiff_t>(position);
    const auto global = scanArguments(Strings(arguments.begin(), split), {quietRule, helpRule, versionRule});
    if (global.has("version"))
        return {VersionRequest{}, false};
    if (position == arguments.size()) {
        if (global.has("help"))
            return {HelpRequest{}, false};
        throw UsageError("Say what to do; korvane-cli --help lists the commands.");
    }

    const std::string& name = arguments[position];
    const auto command = std::find_if(commands().begin(), commands().end(),
                                      [&](const auto& known) { return known.name == name; });
    if (command == commands().end())
        throw UsageError("There is no command \"" + name + "\"; korvane-cli --help lists them.");
    const auto scanned = scanArguments(Strings(split + 1, arguments.end()), command->rules);
    if (scanned.has("version"))
        return {VersionRequest{}, false};
    if (global.has("help") || scanned.has("help"))
        return {HelpRequest{name}, false};
    return {commandRequest(name, scanned), global.has("quiet") || scanned.has("quiet")};
}

}  // namespace korvane::cli
