#include "platform/desktop/Display.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace korvane {
namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

/// \return none when it doesn't answer.
std::shared_ptr<xcb_connection_t> connectedToX11(const std::string& display) {
    if (display.empty())
        return nullptr;
    // A server that its last client has just left starts afresh and refuses everybody for a moment.
    constexpr int tries = 20;
    constexpr std::chrono::milliseconds pause(100);
    for (int count = 1;; ++count) {
        std::shared_ptr<xcb_connection_t> connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect);
        const int error = xcb_connection_has_error(connection.get());
        if (error == 0)
            return connection;
        if (error != XCB_CONN_ERROR || count == tries)
            return nullptr;
        std::this_thread::sleep_for(pause);
    }
}

/// The name is a path, or a socket in the session's folder.
bool waylandAnswers(const std::string& display) {
    if (display.empty())
        return false;
    const std::string path = display.front() == '/' ? display : variable("XDG_RUNTIME_DIR") + "/" + display;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int socketNumber = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socketNumber < 0)
        return false;
    const bool answers =
        connect(socketNumber, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(socketNumber);
    return answers;
}

}  // namespace

DisplayEnvironment DisplayEnvironment::ofProcess() {
    return {variable("QT_QPA_PLATFORM"), variable("WAYLAND_DISPLAY"), variable("DISPLAY")};
}

DisplayChoice chooseDisplay(const DisplayEnvironment& environment, bool waylandAnswers, bool x11Answers) {
    // Someone who names a platform that needs no display means it.
    const bool namesOther = !environment.platform.empty() && !environment.platform.starts_with("xcb") &&
                            !environment.platform.starts_with("wayland");
    if (namesOther || (waylandAnswers && x11Answers))
        return {};
    if (!environment.platform.empty() && (waylandAnswers || x11Answers)) {
        const bool wanted = environment.platform.starts_with("xcb") ? x11Answers : waylandAnswers;
        // "wayland;xcb" lists what to try in turn.
        const bool alternatives = environment.platform.find(';') != std::string::npos;
        if (wanted || alternatives)
            return {};
        return {{},
                "Korvane can't reach the display that QT_QPA_PLATFORM=" + environment.platform +
                    " asks for; leave the variable out."};
    }
    if (waylandAnswers)
        return {"wayland", {}};
    if (x11Answers)
        return {"xcb", {}};
    const std::string& named =
        environment.x11Display.empty() ? environment.waylandDisplay : environment.x11Display;
    if (named.empty())
        return {{}, "Korvane's window needs a display, and there is none here; korvane-cli does without."};
    return {{}, "Korvane can't open the display \"" + named + "\"; korvane-cli does without one."};
}

DisplayChoice findDisplay(const DisplayEnvironment& environment) {
    const auto connection = connectedToX11(environment.x11Display);
    auto choice =
        chooseDisplay(environment, waylandAnswers(environment.waylandDisplay), connection != nullptr);
    choice.connection = connection;
    return choice;
}

}  // namespace korvane
