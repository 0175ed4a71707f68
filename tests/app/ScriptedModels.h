// Speech models that are on no disk: what a look finds is told by a test, and so is how a download goes.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "app/SpeechModelServices.h"

namespace korvane {

/// Shared between the test and the workers, so everything goes through its functions.
class ModelsScript {
  public:
    using OnReport = std::function<void(const DownloadProgress&)>;
    using Downloading = std::function<void(const std::string& id, const OnReport&, const std::stop_token&)>;
    using Adding = std::function<void(const std::function<void(double)>&, const std::stop_token&)>;

    /// What is added turns out to be a model that only finds voices.
    bool addsVoices = false;
    /// Set before anything is asked for.
    Downloading download = [](const auto&, const auto&, const auto&) {};
    Adding add = [](const auto&, const auto&) {};

    ModelsScript() {
        found_.folder = "/home/somebody/.local/share/korvane/models/whisper";
        found_.models = {
            offer("tiny", "Whisper tiny", 43'537'433, 340'000'000, 31),
            offer("base", "Whisper base", 81'768'585, 450'000'000, 15),
            offer("small", "Whisper small", 264'464'607, 830'000'000, 4),
            offer("turbo", "Whisper large-v3-turbo", 574'041'195, 1'300'000'000, 0.9),
        };
        found_.models[1].isRecommended = true;
    }

    SpeechModelsFound found() {
        const std::lock_guard lock(mutex_);
        if (!lookFailure_.empty())
            throw std::runtime_error(lookFailure_);
        return found_;
    }
    /// As if something had happened on the disk.
    void change(const std::function<void(SpeechModelsFound&)>& change) {
        const std::lock_guard lock(mutex_);
        change(found_);
    }
    void install(const std::string& id, bool isOwn = true) {
        change([&](SpeechModelsFound& found) {
            SpeechModelOffer& model = *std::ranges::find(found.models, id, &SpeechModelOffer::id);
            model.isInstalled = true;
            model.isOwn = isOwn;
            model.partBytes = 0;
            model.fault.clear();
            if (found.inUse.empty())
                found.inUse = id;
        });
    }
    /// A file that finds voices and recognises nothing.
    void addVoices(bool isOwn = true) {
        change([&](SpeechModelsFound& found) {
            found.models.push_back(offer("silero", "Voice model silero", 885'098, 0, 0));
            found.models.back().isListed = false;
            found.models.back().isOwn = isOwn;
            found.models.back().findsVoices = true;
        });
    }
    void setPart(const std::string& id, std::uint64_t bytes) {
        change([&](SpeechModelsFound& found) {
            std::ranges::find(found.models, id, &SpeechModelOffer::id)->partBytes = bytes;
        });
    }
    /// Its file is there, but no use.
    void damage(const std::string& id, const std::string& fault, bool isOwn = true) {
        change([&](SpeechModelsFound& found) {
            SpeechModelOffer& model = *std::ranges::find(found.models, id, &SpeechModelOffer::id);
            model.fault = fault;
            model.isOwn = isOwn;
        });
    }
    void uninstall(const std::string& id) {
        change([&](SpeechModelsFound& found) {
            const auto model = std::ranges::find(found.models, id, &SpeechModelOffer::id);
            if (model == found.models.end())
                return;
            model->isInstalled = false;
            model->fault.clear();
            if (found.inUse == id)
                found.inUse.clear();
        });
    }
    void failLooks(std::string sentence) {
        const std::lock_guard lock(mutex_);
        lookFailure_ = std::move(sentence);
    }
    void failChanges(std::string sentence) {
        const std::lock_guard lock(mutex_);
        changeFailure_ = std::move(sentence);
    }
    /// "remove base", each when it was asked for. \throws std::runtime_error when changes shall fail.
    void note(const std::string& call) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(call);
        if (!changeFailure_.empty())
            throw std::runtime_error(changeFailure_);
    }
    std::vector<std::string> calls() {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

    static SpeechModelOffer offer(const std::string& id, const std::string& name, std::uint64_t bytes,
                                  std::uint64_t memory, double speed) {
        SpeechModelOffer offer;
        offer.id = id;
        offer.name = name;
        offer.bytes = bytes;
        offer.memoryBytes = memory;
        offer.speed = speed;
        return offer;
    }
    static DownloadProgress report(std::uint64_t received, std::uint64_t total, double rate = 4.2e6) {
        DownloadProgress report;
        report.stage = DownloadStage::downloading;
        report.receivedBytes = received;
        report.totalBytes = total;
        report.bytesPerSecond = rate;
        report.secondsLeft = static_cast<double>(total - received) / rate;
        return report;
    }

  private:
    std::mutex mutex_;
    SpeechModelsFound found_;
    std::vector<std::string> calls_;
    std::string lookFailure_;
    std::string changeFailure_;
};

class ScriptedModels final : public SpeechModelServices {
  public:
    explicit ScriptedModels(std::shared_ptr<ModelsScript> script) : script_(std::move(script)) {}

    SpeechModelsFound find() override { return script_->found(); }
    void download(const std::string& id, const std::function<void(const DownloadProgress&)>& progress,
                  const std::stop_token& stop) override {
        script_->note("download " + id);
        script_->download(id, progress, stop);
        script_->install(id);
    }
    void discard(const std::string& id) override {
        script_->note("discard " + id);
        script_->setPart(id, 0);
    }
    void add(const std::filesystem::path& file, const std::function<void(double)>& progress,
             const std::stop_token& stop) override {
        script_->note("add " + file.string());
        script_->add(progress, stop);
        if (script_->addsVoices)
            return script_->addVoices();
        script_->change([&](SpeechModelsFound& found) {
            found.models.push_back(
                ModelsScript::offer("mine", "Whisper mine", 1'533'763'059, 2'400'000'000, 1.3));
            found.models.back().isInstalled = true;
            found.models.back().isListed = false;
            found.models.back().isOwn = true;
            found.inUse = "mine";
        });
    }
    void remove(const std::string& id) override {
        script_->note("remove " + id);
        script_->change([&](SpeechModelsFound& found) {
            std::erase_if(found.models,
                          [&](const auto& model) { return model.id == id && model.findsVoices; });
        });
        script_->uninstall(id);
    }
    void use(const std::string& id) override {
        script_->note("use " + id);
        script_->change([&](SpeechModelsFound& found) { found.inUse = id; });
    }

  private:
    std::shared_ptr<ModelsScript> script_;
};

}  // namespace korvane
