// Remembers whether memory was refused to the library, and says so for it when it ends the process for that:
// most of it doesn't look whether it got what it asked for.
#pragma once

#include <string_view>

namespace korvane::whisper {

/// From now on the process's last words are a failure of memory when that is what it ends for. Once, before
/// the library is used. \param output  the pipe to the program.
void watchMemory(int output);

/// What the library complains of, on whichever thread.
void hearComplaint(std::string_view complaint);

/// Before something that may run out of memory, and after.
void forgetComplaints();
bool hasMemoryRunOut();

}  // namespace korvane::whisper
