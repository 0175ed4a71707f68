// The transcription that two commands share.
#pragma once

#include <filesystem>
#include <stop_token>
#include <string>

#include "cli/Commands.h"
#include "cli/Transcript.h"

namespace korvane::cli {

/// Asks for permission, takes out the sound, recognises it, and deletes the temporary sound file whatever
/// happens. Whether the language can be recognised is found out before the sound is taken out.
/// \throws Failure when there is no recogniser (with what to install as its hint) or nothing was said;
///         the services' own errors; CancellationError.
Transcript transcribeVideo(const std::filesystem::path& video, const std::string& language,
                           const CommandContext& context, const std::stop_token& stop);

}  // namespace korvane::cli
