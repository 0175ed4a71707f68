// The speech models in the standard folders, and the list of those that can be downloaded.
#pragma once

#include <functional>
#include <string>

#include "app/SpeechModelServices.h"
#include "platform/desktop/SystemProxy.h"
#include "platform/folders/StandardFolders.h"
#include "platform/models/SpeechModelStore.h"

namespace korvane {

/// Reads list and folders anew at each call, so that what was changed by hand counts. Any thread.
class StoredSpeechModels final : public SpeechModelServices {
  public:
    /// The proxy for an address, as in http_proxy; empty for what the environment says. Called on the thread
    /// that downloads, which is ended by the stop.
    using ProxyOf = std::function<std::string(const std::string& address, const std::stop_token&)>;

    explicit StoredSpeechModels(StandardFolders folders, ProxyOf proxyOf = systemProxyFor);

    /// Measures the machine when it is first called.
    SpeechModelsFound find() override;
    void download(const std::string& id, const std::function<void(const DownloadProgress&)>& progress,
                  const std::stop_token& stop) override;
    void discard(const std::string& id) override;
    void add(const std::filesystem::path& file, const std::function<void(double)>& progress,
             const std::stop_token& stop) override;
    void remove(const std::string& id) override;
    void use(const std::string& id) override;

  private:
    SpeechModelStore store() const { return SpeechModelStore(folders_); }

    StandardFolders folders_;
    ProxyOf proxyOf_;
};

}  // namespace korvane
