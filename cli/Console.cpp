#include "cli/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "cli/Failure.h"

namespace korvane::cli {
namespace {

bool canRedraw() {
    const char* type = std::getenv("TERM");
    return isatty(STDERR_FILENO) != 0 && type != nullptr && std::string_view(type) != "dumb";
}

// Asked anew each time, because windows are resized. The last column stays free: writing it would wrap.
int usableColumns() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 79;
    return size.ws_col - 1;
}

/// \return 0, or the error number.
int writeAll(std::FILE* stream, std::string_view text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0)
        return 0;
    const int error = errno != 0 ? errno : EIO;
    std::clearerr(stream);
    return error;
}

}  // namespace

Console::Console() : terminal_(canRedraw()), started_(std::chrono::steady_clock::now()) {}

Console::~Console() {
    endProgress();
}

void Console::beginOperation() {
    started_ = std::chrono::steady_clock::now();
    thinning_.restart();
}

void Console::showProgress(Phase phase, double fraction, const std::string& detail) {
    if (quiet_)
        return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started_;
    state_ = ProgressState{phase, overallProgress(phase, fraction), elapsed.count(), detail};
    if (terminal_)
        draw();
    else if (thinning_.worthALine(*state_))
        writeAll(stderr, plainProgressLine(*state_) + "\n");
}

void Console::endProgress() {
    erase();
    state_.reset();
}

void Console::result(std::string_view text) {
    erase();
    if (const int error = writeAll(stdout, text))
        throw Failure("The result can't be written to standard output: " +
                      std::generic_category().message(error) + ".");
}

void Console::diagnostic(std::string_view line) {
    if (quiet_)
        return;
    erase();
    writeAll(stdout, std::string(line) + "\n");
    if (terminal_ && state_)
        draw();
}

void Console::note(std::string_view line) {
    if (quiet_)
        return;
    erase();
    writeAll(stderr, std::string(line) + "\n");
    if (terminal_ && state_)
        draw();
}

void Console::error(std::string_view sentence) {
    endProgress();
    writeAll(stderr, "korvane-cli: " + std::string(sentence) + "\n");
}

void Console::errorHint(std::string_view line) {
    erase();
    writeAll(stderr, std::string(line) + "\n");
}

void Console::draw() {
    const std::string line = progressLine(*state_, usableColumns());
    if (line == drawn_)
        return;
    writeAll(stderr, "\r" + line + "\x1b[K");
    drawn_ = line;
}

void Console::erase() {
    if (drawn_.empty())
        return;
    writeAll(stderr, "\r\x1b[K");
    drawn_.clear();
}

}  // namespace korvane::cli
