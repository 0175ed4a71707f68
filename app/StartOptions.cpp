#include "app/StartOptions.h"

#include "platform/process/OptionScanner.h"
#include "platform/process/UsageError.h"

namespace korvane {
namespace {

constexpr const char* help = R"(Makes a short portrait reel with word-timed subtitles out of a spoken video.

Usage: korvane [VIDEO]

Opens the window, with the video loaded if one is given. Each start is a window of its own.

  -h, --help     print this
  -V, --version  print the version

korvane-cli does the same work without a window.
)";

}  // namespace

StartOptions parseStartOptions(const std::vector<std::string>& arguments) {
    using Value = OptionRule::Value;
    const auto scanned =
        scanArguments(arguments, {{'h', "help", Value::none}, {'V', "version", Value::none}});
    if (scanned.has("help"))
        return {std::nullopt, help};
    if (scanned.has("version"))
        return {std::nullopt, "korvane " KORVANE_VERSION "\n"};
    if (scanned.operands.empty())
        return {};
    if (scanned.operands.size() > 1)
        throw UsageError("One video at a time: \"" + scanned.operands[1] + "\" is one argument too many.");
    if (scanned.operands.front().empty())
        throw UsageError("The name of the video is empty.");
    return {scanned.operands.front(), {}};
}

}  // namespace korvane
