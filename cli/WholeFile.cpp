#include "cli/WholeFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "cli/Descriptor.h"
#include "cli/Failure.h"
#include "platform/tasks/Cancellation.h"

namespace korvane::cli {
namespace {

std::string reason(int error) {
    return std::generic_category().message(error);
}

// Waits until `descriptor` has something, or a stop is requested.
void waitReadable(int descriptor, int wakeUp) {
    std::array<pollfd, 2> watched{{{descriptor, POLLIN, 0}, {wakeUp, POLLIN, 0}}};
    while (poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
}

std::string readToEnd(int descriptor, const std::string& name, std::size_t limitBytes,
                      const std::stop_token& stop) {
    const Descriptor wakeUp(eventfd(0, EFD_CLOEXEC));
    const std::stop_callback wake(stop, [&wakeUp] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(wakeUp.get(), &one, sizeof one);
    });
    std::string content;
    std::array<char, 1 << 16> block;
    while (true) {
        waitReadable(descriptor, wakeUp.get());
        checkCancelled(stop);
        const auto count = read(descriptor, block.data(), block.size());
        if (count == 0)
            return content;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw Failure(name + " can't be read: " + reason(errno) + ".");
        content.append(block.data(), static_cast<std::size_t>(count));
        if (content.size() > limitBytes)
            throw Failure(name + " is larger than " + std::to_string(limitBytes >> 20) +
                          " MB, which can't be meant.");
    }
}

int writeToEnd(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const auto count = write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

std::string readWholeFile(const std::filesystem::path& file, std::size_t limitBytes,
                          const std::stop_token& stop) {
    if (file == "-")
        return readToEnd(STDIN_FILENO, "Standard input", limitBytes, stop);
    const std::string name = "\"" + file.string() + "\"";
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.get() < 0 && errno == ENOENT)
        throw Failure("There is no file " + name + ".");
    if (opened.get() < 0)
        throw Failure(name + " can't be read: " + reason(errno) + ".");
    return readToEnd(opened.get(), name, limitBytes, stop);
}

void writeWholeFile(const std::filesystem::path& file, std::string_view content) {
    const auto failed = [&](int error) {
        return Failure("\"" + file.string() + "\" can't be written: " + reason(error) + ".");
    };
    std::string pattern = (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
    const Descriptor temporary(mkostemp(pattern.data(), O_CLOEXEC));
    if (temporary.get() < 0)
        throw failed(errno);
    int error = writeToEnd(temporary.get(), content);
    if (error == 0 && fchmod(temporary.get(), usualMode()) != 0)
        error = errno;
    if (error == 0 && rename(pattern.c_str(), file.c_str()) != 0)
        error = errno;
    if (error == 0)
        return;
    unlink(pattern.c_str());
    throw failed(error);
}

}  // namespace korvane::cli
