// What `--help` and `--version` print.
#pragma once

#include <string>
#include <string_view>

namespace korvane::cli {

/// \param topic  a command's name, or empty for the program.
/// \throws UsageError when there is no such command.
std::string helpText(std::string_view topic);

std::string versionText();

}  // namespace korvane::cli
