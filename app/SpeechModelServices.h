// What the sheet of speech models does on this machine: looks, downloads, adds, removes, chooses. The
// functions block and run on workers, several at once.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/models/ModelDownload.h"

namespace korvane {

/// One model that can be had or is here.
struct SpeechModelOffer {
    std::string id;
    std::string name;               ///< "Whisper base"
    std::uint64_t bytes = 0;        ///< of the file
    std::uint64_t memoryBytes = 0;  ///< that recognition needs
    double speed = 0;               ///< seconds of sound recognised in a second on this machine
    bool isRecommended = false;
    bool isInstalled = false;  ///< here, whole, and able to recognise
    bool isListed = true;      ///< so it can be downloaded
    bool isOwn = false;        ///< here for this person alone, so it can be removed
    /// Here and whole, but for use beside one that recognises: neither chosen nor counted as installed.
    bool findsVoices = false;
    /// One sentence about a file that is here but can't be used, and isn't installed therefore; else empty.
    std::string fault = {};
    std::uint64_t partBytes = 0;  ///< what an earlier download left
};

/// What a look at the disk found.
struct SpeechModelsFound {
    std::vector<SpeechModelOffer> models;  ///< from the smallest to the best
    std::string inUse;                     ///< the id of the one that recognises; empty for none
    std::filesystem::path folder;          ///< where the person's own lie
    std::string notice;  ///< a sentence about what could not be used; empty when all is well
};

/// Errors are exceptions whose what() is one sentence for the person.
class SpeechModelServices {
  public:
    virtual ~SpeechModelServices() = default;

    virtual SpeechModelsFound find() = 0;
    /// \param progress  called on the worker. \throws CancellationError; the part stays.
    virtual void download(const std::string& id, const std::function<void(const DownloadProgress&)>& progress,
                          const std::stop_token& stop) = 0;
    /// Forgets what a download left.
    virtual void discard(const std::string& id) = 0;
    /// Copies a model file that the person has into the folder. \param progress  0 to 1, on the worker.
    virtual void add(const std::filesystem::path& file, const std::function<void(double)>& progress,
                     const std::stop_token& stop) = 0;
    virtual void remove(const std::string& id) = 0;
    virtual void use(const std::string& id) = 0;
};

}  // namespace korvane
