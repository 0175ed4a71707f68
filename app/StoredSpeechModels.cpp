#include "app/StoredSpeechModels.h"

#include <algorithm>
#include <utility>

#include "platform/models/Machine.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"

namespace korvane {
namespace {

const SpeechModel& listedModel(const SpeechModelStore& store, const std::string& id) {
    const SpeechModel* model = store.catalogue().find(id);
    if (!model)
        throw ModelError("The model “" + id + "” is no longer on the list of models.");
    return *model;
}

SpeechModelOffer offerOf(const SpeechModel& model, const SpeechModelStore& store) {
    return {.id = model.id,
            .name = model.name,
            .bytes = model.bytes,
            .memoryBytes = model.memoryBytes,
            .speed = expectedSpeed(model, Machine::here()),
            .partBytes = downloadedPart(model, store)};
}

SpeechModelOffer offerOf(const InstalledSpeechModel& model, const SpeechModelStore& store) {
    const SpeechModel* listed = store.catalogue().find(model.id);
    return {.id = model.id,
            .name = model.name,
            .bytes = model.bytes,
            .memoryBytes = model.memoryBytes,
            .speed = expectedSpeed(model.operationsPerSecond, Machine::here()),
            .isInstalled = true,
            .isListed = listed && listed->offered && listed->bytes == model.bytes,
            .isOwn = model.own};
}

SpeechModelOffer offerOf(const InstalledVoiceModel& model) {
    return {.id = model.id,
            .name = "Voice model " + model.id,
            .bytes = model.bytes,
            .isListed = false,
            .isOwn = model.own,
            .findsVoices = true};
}

SpeechModelOffer offerOf(const UnusableModelFile& file, const SpeechModelStore& store) {
    const SpeechModel* listed = file.listed ? store.catalogue().find(file.id) : nullptr;
    SpeechModelOffer offer = listed ? offerOf(*listed, store) : SpeechModelOffer();
    offer.id = file.id;
    offer.name = file.name;
    offer.isListed = file.listed;
    offer.isOwn = file.own;
    offer.fault = file.reason;
    return offer;
}

/// The offered ones where they stand in the list, the others behind them.
void merge(std::vector<SpeechModelOffer>& models, SpeechModelOffer here) {
    const auto same = std::ranges::find(models, here.id, &SpeechModelOffer::id);
    if (same == models.end())
        models.push_back(std::move(here));
    else
        *same = std::move(here);
}

}  // namespace

StoredSpeechModels::StoredSpeechModels(StandardFolders folders, ProxyOf proxyOf)
    : folders_(std::move(folders)), proxyOf_(std::move(proxyOf)) {}

SpeechModelsFound StoredSpeechModels::find() {
    const SpeechModelStore store = this->store();
    SpeechModelsFound found;
    found.folder = store.folder();
    found.notice = store.catalogue().problem();
    for (const SpeechModel& model : store.catalogue().offered())
        found.models.push_back(offerOf(model, store));
    for (const InstalledSpeechModel& model : store.installed())
        merge(found.models, offerOf(model, store));
    for (const InstalledVoiceModel& model : store.voiceModels())
        merge(found.models, offerOf(model));
    for (const UnusableModelFile& file : store.unusable())
        merge(found.models, offerOf(file, store));
    if (const auto best = recommendedModel(store.catalogue(), Machine::here()))
        for (SpeechModelOffer& offer : found.models)
            offer.isRecommended = offer.id == best->id;
    if (const auto model = store.inUse())
        found.inUse = model->id;
    return found;
}

void StoredSpeechModels::download(const std::string& id,
                                  const std::function<void(const DownloadProgress&)>& progress,
                                  const std::stop_token& stop) {
    const SpeechModelStore store = this->store();
    const SpeechModel& model = listedModel(store, id);
    DownloadOptions options;
    options.proxy = proxyOf_(model.address, stop);
    downloadModel(model, store, stop, progress, options);
    store.useFromNow(id);
}

void StoredSpeechModels::discard(const std::string& id) {
    const SpeechModelStore store = this->store();
    discardPart(listedModel(store, id), store);
}

void StoredSpeechModels::add(const std::filesystem::path& file, const std::function<void(double)>& progress,
                             const std::stop_token& stop) {
    const SpeechModelStore store = this->store();
    store.useFromNow(store.add(file, stop, progress).id);
}

void StoredSpeechModels::remove(const std::string& id) {
    store().remove(id);
}

void StoredSpeechModels::use(const std::string& id) {
    store().use(id);
}

}  // namespace korvane
