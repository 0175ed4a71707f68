// Whether there is anything but the processor to draw windows with.
#pragma once

#include <filesystem>
#include <string_view>

namespace korvane {

/// Looks for a device to draw with that this process may open: asking a driver would take longer than
/// drawing. Any thread. \param devices  the folder where the system lists its devices.
bool hasGraphicsProcessor(const std::filesystem::path& devices = "/dev");

/// Whether a driver of that name draws with the processor, as some do where the device can't do it.
/// \param renderer  as OpenGL calls it.
bool isDrawnByProcessor(std::string_view renderer);

}  // namespace korvane
