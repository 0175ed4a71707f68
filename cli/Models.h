// The models for speech recognition, from the command line.
#pragma once

#include <stop_token>

#include "cli/Commands.h"

namespace korvane::cli {

/// \throws Failure, ModelError, CancellationError.
CommandOutput runModels(const ModelsRequest& request, const CommandContext& context,
                        const std::stop_token& stop);

}  // namespace korvane::cli
