#include "platform/speech/whisper/worker/Backends.h"

#include <ggml-backend.h>
#include <whisper.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <system_error>
#include <utility>

#include "platform/speech/whisper/worker/MemoryWatch.h"

namespace korvane::whisper {
namespace {

void onLog(ggml_log_level level, const char* text, void*) {
    // A long complaint goes on in a second piece.
    if (level == GGML_LOG_LEVEL_ERROR || level == GGML_LOG_LEVEL_CONT)
        hearComplaint(text);
}

std::filesystem::path cardsIn(const std::string& folder) {
    return std::filesystem::path(folder) / "gpu";
}

/// A library that knows its plug-ins loads those for cards too: then they must find no driver.
void hideCards() {
    for (const auto& [name, value] : std::initializer_list<std::pair<const char*, const char*>>{
             {"VK_LOADER_DRIVERS_DISABLE", "*"},
             {"VK_DRIVER_FILES", "/dev/null"},
             {"VK_ICD_FILENAMES", "/dev/null"},  // as older loaders call it
             {"CUDA_VISIBLE_DEVICES", "-1"},
             {"HIP_VISIBLE_DEVICES", "-1"},
             {"ONEAPI_DEVICE_SELECTOR", "!*:*"}})
        setenv(name, value, 1);
}

/// A driver that finds nothing to drive still costs 0.05 s, on a busy machine 0.15 s, and 65 MB. Who names
/// devices to the plug-in wants them whatever they are, such as one that computes on the processor, for a
/// test.
bool hasDevice() {
    std::error_code none;
    if (std::getenv("GGML_VK_VISIBLE_DEVICES"))
        return true;
    for (const char* const device :
         {"/dev/dri", "/dev/nvidia0", "/dev/dxg"})  // the last: of a guest of Windows
        if (std::filesystem::exists(device, none))
            return true;
    return false;
}

/// The first, as the library takes it.
ggml_backend_dev_t firstCard() {
    for (std::size_t i = 0; i < ggml_backend_dev_count(); ++i) {
        auto* const device = ggml_backend_dev_get(i);
        const auto type = ggml_backend_dev_type(device);
        if (type == GGML_BACKEND_DEVICE_TYPE_GPU || type == GGML_BACKEND_DEVICE_TYPE_IGPU)
            return device;
    }
    return nullptr;
}

}  // namespace

bool Backends::mayFindCard() const {
    std::error_code none;
    const bool hasPlugin = folder.empty() || (!std::filesystem::is_empty(cardsIn(folder), none) && !none);
    return useCard && hasPlugin && hasDevice();
}

void Backends::prepare() const {
    whisper_log_set(onLog, nullptr);
    ggml_log_set(onLog, nullptr);
    const bool withCard = mayFindCard();
    if (!withCard)
        hideCards();
    if (folder.empty())
        return ggml_backend_load_all();
    ggml_backend_load_all_from_path(folder.c_str());
    if (withCard)
        ggml_backend_load_all_from_path(cardsIn(folder).c_str());
}

std::string usableCard() {
    auto* const device = firstCard();
    if (!device)
        return "";
    auto* const tried = ggml_backend_dev_init(device, nullptr);
    if (!tried)
        return "";
    ggml_backend_free(tried);
    std::string name = std::string(ggml_backend_dev_name(device)).substr(0, 60);
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

bool canCompute() {
    return ggml_backend_dev_by_type(GGML_BACKEND_DEVICE_TYPE_CPU) != nullptr;
}

}  // namespace korvane::whisper
