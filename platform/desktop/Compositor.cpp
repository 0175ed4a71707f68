#include "platform/desktop/Compositor.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string>

namespace korvane {
namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

/// A compositing manager holds the selection _NET_WM_CM_S<screen> (Extended Window Manager Hints).
bool hasCompositingManager(xcb_connection_t* connection) {
    // $DISPLAY names the screen that the connection is for.
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const bool isNamed = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    const std::unique_ptr<char, FreeReply> ownedHost(isNamed ? host : nullptr);
    const std::string name = "_NET_WM_CM_S" + std::to_string(screen);
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, static_cast<uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace

bool isCompositorRunning() {
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        return true;
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr && x11->connection() != nullptr && hasCompositingManager(x11->connection());
}

}  // namespace korvane
