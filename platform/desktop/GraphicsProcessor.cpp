#include "platform/desktop/GraphicsProcessor.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace korvane {
namespace {

bool canBeOpened(const std::filesystem::path& device) {
    return access(device.c_str(), R_OK | W_OK) == 0;
}

/// What the kernel offers for drawing without a screen; a card alone, as simple virtual machines have, can
/// only show pictures.
bool hasRenderNode(const std::filesystem::path& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().starts_with("renderD") && canBeOpened(entry->path()))
            return true;
    }
    return false;
}

}  // namespace

bool hasGraphicsProcessor(const std::filesystem::path& devices) {
    // Drivers that don't go through the kernel's own interface have devices of their own.
    constexpr std::array ownDevices{"nvidiactl", "dxg", "mali0", "kgsl-3d0"};
    return hasRenderNode(devices / "dri") ||
           std::ranges::any_of(ownDevices, [&](const char* name) { return canBeOpened(devices / name); });
}

bool isDrawnByProcessor(std::string_view renderer) {
    constexpr std::array names{"llvmpipe", "softpipe", "swrast", "Software Rasterizer"};
    return std::ranges::any_of(
        names, [&](const char* name) { return renderer.find(name) != std::string_view::npos; });
}

}  // namespace korvane
