// Whether the binary files of an acoustic model are as long as their own headers say. The engine trusts
// those headers and reads past the end of a file that was cut off.
#pragma once

#include <filesystem>

namespace korvane {

/// The definition of phones (mdef). The text form, which the engine reads with care, always passes.
bool isCompletePhoneDefinition(const std::filesystem::path& mdef);

/// The dump of mixture weights (sendump) of one codebook or more, 8 or 4 bits a weight.
bool isCompleteMixtureDump(const std::filesystem::path& sendump);

}  // namespace korvane
