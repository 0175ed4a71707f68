// Keeps what the sphinx libraries say and do on an error inside the engine: they log to the terminal, and
// end the whole process where they see no way on.
#pragma once

#include <string>

namespace korvane {

/// Silences the libraries' log and takes over their errors, for the whole process. Any thread, any number of
/// times; before the first other call to the libraries.
void takeOverLibraryErrors();

/// Runs `call(argument)`, which calls the libraries and must own nothing with a destructor.
/// \return false when the library was about to end the process. What it had allocated is then lost, and what
///         it was working on must not be touched again.
bool guardedLibraryCall(void (*call)(void*), void* argument);

/// Runs a lambda that captures by reference.
template <class Call>
bool guardedLibraryCall(Call call) {
    return guardedLibraryCall([](void* itself) { (*static_cast<Call*>(itself))(); }, &call);
}

/// What the libraries complained of first during this thread's last guarded call; empty if they did not.
std::string libraryComplaint();

}  // namespace korvane
