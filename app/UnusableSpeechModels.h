// The sheet of speech models in an installation without what would use them: it says so, and offers nothing.
#pragma once

#include <stdexcept>

#include "app/SpeechModelServices.h"

namespace korvane {

/// Any thread.
class UnusableSpeechModels final : public SpeechModelServices {
  public:
    SpeechModelsFound find() override {
        SpeechModelsFound found;
        found.notice = kWhy;
        return found;
    }
    void download(const std::string&, const std::function<void(const DownloadProgress&)>&,
                  const std::stop_token&) override {
        refuse();
    }
    void discard(const std::string&) override { refuse(); }
    void add(const std::filesystem::path&, const std::function<void(double)>&,
             const std::stop_token&) override {
        refuse();
    }
    void remove(const std::string&) override { refuse(); }
    void use(const std::string&) override { refuse(); }

    static constexpr const char* kWhy =
        "This Korvane was built without Whisper, so it can’t use speech models. Build it again with the "
        "Whisper "
        "library: ./run fetches it where it can.";

  private:
    [[noreturn]] static void refuse() { throw std::runtime_error(kWhy); }
};

}  // namespace korvane
