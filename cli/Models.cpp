#include "cli/Models.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "cli/Failure.h"
#include "platform/folders/StandardFolders.h"
#include "platform/models/Machine.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"
#include "platform/models/ModelTexts.h"
#include "platform/models/SpeechModelStore.h"

namespace korvane::cli {
namespace {

/// One line of the list, of a model that is here or can be had.
struct Row {
    std::string id;
    std::uint64_t bytes = 0;
    std::uint64_t memoryBytes = 0;
    double operationsPerSecond = 0;
    std::string state;
};

/// Of UTF-8: ids are made of file names.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; }));
}

std::string leftIn(const std::string& text, std::size_t columns) {
    return text + std::string(columns - std::min(columns, widthOf(text)), ' ');
}

std::string rightIn(const std::string& text, std::size_t columns) {
    return std::string(columns - std::min(columns, text.size()), ' ') + text;
}

/// As a shell reads it; ids are made of file names.
std::string shellWord(const std::string& id) {
    const bool plain = std::ranges::all_of(id, [](unsigned char byte) {
        return std::isalnum(byte) != 0 || byte == '-' || byte == '_' || byte == '.' || byte > 127;
    });
    return plain ? id : "'" + id + "'";
}

/// What can be done about a file that can't be used; empty for nothing.
std::string wayOut(const UnusableModelFile& file) {
    const std::string get = "korvane-cli models install " + shellWord(file.id) + " gets it again";
    const std::string go = "korvane-cli models remove " + shellWord(file.id) + " removes it";
    if (file.listed && file.own)
        return get + ", " + go;
    return file.listed ? get : file.own ? go : "";
}

std::vector<Row> rowsOf(const SpeechModelStore& store, const std::vector<UnusableModelFile>& unusable) {
    const auto installed = store.installed();
    const auto used = store.inUse();
    const auto recommended = recommendedModel(store.catalogue(), Machine::here());
    std::vector<Row> rows;
    for (const auto& model : installed)
        rows.push_back({model.id, model.bytes, model.memoryBytes, model.operationsPerSecond,
                        used && used->id == model.id ? "installed, in use" : "installed"});
    for (const auto& model : store.catalogue().offered()) {
        const auto isIt = [&](const auto& other) { return other.id == model.id; };
        if (std::ranges::any_of(installed, isIt) || std::ranges::any_of(unusable, isIt))
            continue;
        std::string state = recommended && recommended->id == model.id ? "recommended here" : "";
        if (const auto part = downloadedPart(model, store))
            state += (state.empty() ? "" : ", ") + byteText(part) + " downloaded";
        rows.push_back({model.id, model.bytes, model.memoryBytes, model.operationsPerSecond, state});
    }
    std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
        return a.operationsPerSecond < b.operationsPerSecond;
    });
    return rows;
}

CommandOutput list(const SpeechModelStore& store) {
    CommandOutput output;
    output.note = store.catalogue().problem();
    const auto unusable = store.unusable();
    const auto rows = rowsOf(store, unusable);
    std::size_t widest = 0;
    for (const auto& row : rows)
        widest = std::max(widest, widthOf(row.id));
    for (const auto& file : unusable)
        widest = std::max(widest, widthOf(file.id));
    const auto voices = store.voiceModels();
    for (const auto& model : voices)
        widest = std::max(widest, widthOf(model.id));
    for (const auto& row : rows) {
        output.result += leftIn(row.id, widest) + rightIn(byteText(row.bytes), 8) + ", " +
                         rightIn(byteText(row.memoryBytes), 6) + " of memory, " +
                         speedText(expectedSpeed(row.operationsPerSecond, Machine::here())) +
                         (row.state.empty() ? "" : "; " + row.state) + "\n";
    }
    for (const auto& model : voices) {
        output.result += leftIn(model.id, widest) + rightIn(byteText(model.bytes), 8) +
                         ", tells voices from music and noise" +
                         (model.file == voices.front().file ? "; in use" : "") + "\n";
    }
    for (const auto& file : unusable) {
        const auto help = wayOut(file);
        output.result += leftIn(file.id, widest) + "  not usable: " + file.reason +
                         (help.empty() ? "" : " (" + help + ")") + "\n";
    }
    return output;
}

std::string detailOf(const DownloadProgress& now) {
    switch (now.stage) {
        case DownloadStage::connecting:
            return "connecting";
        case DownloadStage::waiting:
            return "connection lost, trying again";
        case DownloadStage::verifying:
            return "reading what is there";
        case DownloadStage::downloading:
            break;
    }
    if (!now.secondsLeft)
        return byteText(now.receivedBytes) + " of " + byteText(now.totalBytes);
    return rateText(now.bytesPerSecond) + "  " + timeLeftText(*now.secondsLeft);
}

CommandOutput install(const ModelsRequest& request, const SpeechModelStore& store,
                      const CommandContext& context, const std::stop_token& stop) {
    const auto* model = store.catalogue().find(request.subject);
    if (!model && (store.find(request.subject) || store.findUnusable(request.subject)))
        throw Failure("The model \"" + request.subject + "\" is a file of its own: no server has it.");
    if (!model)
        throw Failure("There is no model \"" + request.subject + "\"; korvane-cli models list shows them.");
    if (const auto there = store.find(model->id))
        return {{}, model->name + " is installed already, as " + there->file.string() + "."};
    context.queue.post([&console = context.console] { console.beginOperation(); });
    const auto progress = [&context](const DownloadProgress& now) {
        context.queue.post([&console = context.console, now] {
            const double share = static_cast<double>(now.receivedBytes) / static_cast<double>(now.totalBytes);
            console.showProgress(Phase::downloadingModel, share, detailOf(now));
        });
    };
    DownloadOptions options;
    options.proxy = request.proxy;
    try {
        const auto file = downloadModel(*model, store, stop, progress, options);
        store.useFromNow(model->id);
        return {{},
                "Installed " + model->name + ", " + byteText(model->bytes) + ", as " + file.string() + "."};
    } catch (const ModelError& error) {
        if (downloadedPart(*model, store) == 0)
            throw;
        throw Failure(error.what(), "What has arrived is kept; the same command goes on from there.");
    }
}

/// What is installed, else what a download that was stopped has left.
CommandOutput remove(const std::string& id, const SpeechModelStore& store) {
    const auto* listed = store.catalogue().find(id);
    if (store.find(id) || store.findUnusable(id) || !listed || downloadedPart(*listed, store) == 0) {
        store.remove(id);
        return {{}, "Removed " + id + "."};
    }
    const auto part = byteText(downloadedPart(*listed, store));
    discardPart(*listed, store);
    if (downloadedPart(*listed, store) > 0)
        throw Failure(listed->name + " is being downloaded by another window or command.");
    return {{}, "Removed the " + part + " that had been downloaded of " + listed->name + "."};
}

CommandOutput use(const std::string& id, const SpeechModelStore& store) {
    if (const auto file = store.findUnusable(id)) {
        const auto help = wayOut(*file);
        throw Failure(file->reason, help.empty() ? "" : help + ".");
    }
    store.use(id);
    return {{}, id + " recognises from now on."};
}

CommandOutput add(const std::string& file, const SpeechModelStore& store, const CommandContext& context,
                  const std::stop_token& stop) {
    context.queue.post([&console = context.console] { console.beginOperation(); });
    const auto model = store.add(file, stop, [&context](double share) {
        context.queue.post(
            [&console = context.console, share] { console.showProgress(Phase::copyingModel, share); });
    });
    store.useFromNow(model.id);
    return {{}, "Added " + model.name + ", " + byteText(model.bytes) + ", as " + model.file.string() + "."};
}

}  // namespace

CommandOutput runModels(const ModelsRequest& request, const CommandContext& context,
                        const std::stop_token& stop) {
    const SpeechModelStore store(StandardFolders::of(processEnvironment()));
    switch (request.action) {
        case ModelsRequest::Action::list:
            return list(store);
        case ModelsRequest::Action::install:
            return install(request, store, context, stop);
        case ModelsRequest::Action::remove:
            return remove(request.subject, store);
        case ModelsRequest::Action::add:
            return add(request.subject, store, context, stop);
        case ModelsRequest::Action::use:
            return use(request.subject, store);
        case ModelsRequest::Action::path:
            return {store.folder().string() + "\n", {}};
    }
    return {};
}

}  // namespace korvane::cli
