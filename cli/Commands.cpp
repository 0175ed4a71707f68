#include "cli/Commands.h"

#include <algorithm>

#include "cli/FileChecks.h"
#include "cli/LanguageNames.h"
#include "cli/MakeReel.h"
#include "cli/TranscribeVideo.h"
#include "cli/WholeFile.h"
#include "cli/WordsFile.h"
#include "model/Language.h"

namespace korvane::cli {
namespace {

std::string padded(std::string_view text, std::size_t columns) {
    std::string result(text);
    result.resize(std::max(columns, result.size()), ' ');
    return result;
}

std::vector<std::filesystem::path> inputsOf(std::filesystem::path video,
                                            const std::optional<std::filesystem::path>& style) {
    std::vector<std::filesystem::path> inputs{std::move(video)};
    if (style)
        inputs.push_back(*style);
    return inputs;
}

}  // namespace

CommandOutput runLanguages(const CommandContext& context) {
    CommandOutput output;
    for (const auto& language : languageCatalogue()) {
        const auto support = context.recognizers.support(language.locale());
        output.result += padded(language.id, 7) + padded(plainLanguageName(language.name), 14) +
                         (support.installed ? "installed: " : "not installed: ") + support.description + "\n";
    }
    return output;
}

CommandOutput runTranscribe(const TranscribeRequest& request, const CommandContext& context,
                            const std::stop_token& stop) {
    requireReadableFile(request.video);
    if (request.output)
        requireWritableDestination(*request.output, {request.video});
    const auto transcript = transcribeVideo(request.video, request.language, context, stop);
    auto text = formatTranscript(transcript, request.format);
    if (!request.output)
        return {std::move(text), {}};
    writeWholeFile(*request.output, text);
    const auto count = transcript.words.size();
    return {{},
            "Wrote " + request.output->string() + ", " + std::to_string(count) +
                (count == 1 ? " word." : " words.")};
}

CommandOutput runReel(const ReelRequest& request, const CommandContext& context,
                      const std::stop_token& stop) {
    requireReadableFile(request.video);
    requireWritableDestination(request.reel.output, inputsOf(request.video, request.reel.style));
    const auto style = chosenStyle(request.reel.style, context, stop);
    const MediaTime length = requirePicture(request.video, stop);
    const auto transcript = transcribeVideo(request.video, request.language, context, stop);
    return makeReel(request.video, transcript.words, length, style, request.reel, context, stop);
}

CommandOutput runExport(const ExportRequest& request, const CommandContext& context,
                        const std::stop_token& stop) {
    requireReadableFile(request.video);
    auto inputs = inputsOf(request.video, request.reel.style);
    if (request.words != "-")
        inputs.push_back(request.words);
    requireWritableDestination(request.reel.output, inputs);
    const auto style = chosenStyle(request.reel.style, context, stop);
    const std::string name = request.words == "-" ? "Standard input" : "\"" + request.words.string() + "\"";
    const auto transcript = parseWordsFile(name, readWholeFile(request.words, largestWordsFileBytes, stop));
    const MediaTime length = requirePicture(request.video, stop);
    return makeReel(request.video, transcript.words, length, style, request.reel, context, stop);
}

}  // namespace korvane::cli
