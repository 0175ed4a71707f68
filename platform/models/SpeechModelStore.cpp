#include "platform/models/SpeechModelStore.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <set>
#include <system_error>

#include "platform/defaults/FileUserDefaults.h"
#include "platform/models/Machine.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"
#include "platform/models/ModelImport.h"
#include "platform/models/WhisperModelFile.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* choiceKey = "speechModel";

fs::path modelFolder(const fs::path& dataFolder) {
    return dataFolder / "korvane" / "models" / "whisper";
}

/// Model files of a folder, by name; the empty list when there is no such folder.
std::vector<fs::path> modelFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const auto name = entry->path().filename().string();
        if (name.ends_with(".bin") && !name.starts_with('.'))
            files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Of a file that the catalogue doesn't know. The id of a listed model is only for the file of its name.
std::string idOfFile(const SpeechModelCatalogue& catalogue, const fs::path& file) {
    std::string id = file.stem().string();
    if (id.starts_with("ggml-") && id.size() > 5)
        id.erase(0, 5);
    const auto* listed = catalogue.find(id);
    return listed && file.filename() != listed->fileName ? file.filename().string() : id;
}

/// A file of a known name and length was checked by its digest when it came, or put there by an
/// administrator; hashing a gigabyte each time the list is shown would take seconds.
const SpeechModel* knownAs(const SpeechModelCatalogue& catalogue, const fs::path& file, std::uint64_t bytes) {
    for (const auto& model : catalogue.known()) {
        if (model.bytes == bytes && file.filename() == model.fileName)
            return &model;
    }
    return nullptr;
}

/// \throws ModelError
InstalledSpeechModel describe(const SpeechModelCatalogue& catalogue, const fs::path& file, bool own) {
    const auto shape = readWhisperModel(file);
    if (!shape.multilingual())
        throw ModelError("\"" + file.filename().string() +
                         "\" is a model for English only; one for all languages is needed.");
    InstalledSpeechModel model;
    model.file = file;
    model.bytes = shape.fileBytes;
    model.own = own;
    if (const auto* known = knownAs(catalogue, file, shape.fileBytes)) {
        model.id = known->id;
        model.name = known->name;
        model.memoryBytes = known->memoryBytes;
        model.operationsPerSecond = known->operationsPerSecond;
        return model;
    }
    model.id = idOfFile(catalogue, file);
    model.name = "Whisper " + model.id;
    model.memoryBytes = shape.memoryBytes();
    model.operationsPerSecond = shape.operationsPerSecond();
    return model;
}

struct Survey {
    std::vector<InstalledSpeechModel> usable;
    std::vector<UnusableModelFile> unusable;
};

Survey survey(const SpeechModelCatalogue& catalogue, const StandardFolders& folders) {
    Survey result;
    std::set<std::string> seen;
    std::set<fs::path> visited;
    const auto visit = [&](const fs::path& folder, bool own) {
        if (folder.empty() || !visited.insert(modelFolder(folder).lexically_normal()).second)
            return;
        for (const auto& file : modelFiles(modelFolder(folder))) {
            try {
                auto model = describe(catalogue, file, own);
                if (seen.insert(model.id).second)
                    result.usable.push_back(std::move(model));
            } catch (const ModelError& error) {
                result.unusable.push_back({file, error.what()});
            }
        }
    };
    visit(folders.dataHome, true);
    for (const auto& folder : folders.dataDirs)
        visit(folder, false);
    std::stable_sort(result.usable.begin(), result.usable.end(), [](const auto& a, const auto& b) {
        return std::pair(a.operationsPerSecond, a.bytes) < std::pair(b.operationsPerSecond, b.bytes);
    });
    return result;
}

FileUserDefaults defaultsOf(const StandardFolders& folders) {
    return FileUserDefaults(QString::fromStdString((folders.configHome / "korvane").string()));
}

std::string chosenId(const StandardFolders& folders) {
    if (folders.configHome.empty())
        return {};
    const auto bytes = defaultsOf(folders).data(choiceKey).value_or(QByteArray());
    return QJsonDocument::fromJson(bytes).object()[QLatin1String("id")].toString().toStdString();
}

}  // namespace

SpeechModelStore::SpeechModelStore(StandardFolders folders)
    : folders_(std::move(folders)), catalogue_(SpeechModelCatalogue::load(folders_)) {}

SpeechModelStore::SpeechModelStore(StandardFolders folders, SpeechModelCatalogue catalogue)
    : folders_(std::move(folders)), catalogue_(std::move(catalogue)) {}

fs::path SpeechModelStore::folder() const {
    if (folders_.dataHome.empty())
        throw ModelError("There is no folder for models: neither XDG_DATA_HOME nor HOME is set.");
    return modelFolder(folders_.dataHome);
}

std::vector<InstalledSpeechModel> SpeechModelStore::installed() const {
    return survey(catalogue_, folders_).usable;
}

std::vector<UnusableModelFile> SpeechModelStore::unusable() const {
    return survey(catalogue_, folders_).unusable;
}

std::optional<InstalledSpeechModel> SpeechModelStore::find(std::string_view id) const {
    for (auto& model : installed()) {
        if (model.id == id)
            return model;
    }
    return std::nullopt;
}

InstalledSpeechModel SpeechModelStore::resolve(const std::string& idOrFile) const {
    if (auto model = find(idOrFile))
        return *model;
    std::error_code error;
    if (!idOrFile.empty() && fs::exists(idOrFile, error))
        return describe(catalogue_, idOrFile, false);
    throw ModelError("There is no installed model and no file \"" + idOrFile +
                     "\"; korvane-cli models list shows what there is.");
}

InstalledSpeechModel SpeechModelStore::add(const fs::path& file, const std::stop_token& stop,
                                           const std::function<void(double)>& progress) const {
    describe(catalogue_, file, false);
    return describe(catalogue_, importModelFile(file, folder(), catalogue_, stop, progress), true);
}

void SpeechModelStore::remove(std::string_view id) const {
    const auto own = folder();
    const auto models = installed();
    const auto found =
        std::find_if(models.begin(), models.end(), [&](const auto& model) { return model.id == id; });
    if (found == models.end())
        throw ModelError("There is no installed model \"" + std::string(id) + "\".");
    if (!found->own)
        throw ModelError("The model \"" + std::string(id) + "\" is the system's, in \"" +
                         found->file.parent_path().string() + "\"; only an administrator can remove it.");
    std::error_code error;
    fs::remove(found->file, error);
    if (error)
        throw ModelError("\"" + found->file.string() + "\" can't be removed: " + error.message() + ".");
    if (const auto* known = catalogue_.find(id))
        discardPart(*known, *this);
}

std::optional<InstalledSpeechModel> SpeechModelStore::inUse() const {
    const auto models = installed();
    if (models.empty())
        return std::nullopt;
    const auto chosen = chosenId(folders_);
    const auto found =
        std::find_if(models.begin(), models.end(), [&](const auto& model) { return model.id == chosen; });
    if (found != models.end())
        return *found;
    const auto memory = Machine::installedMemoryBytes();
    const auto best = std::find_if(models.rbegin(), models.rend(),
                                   [&](const auto& model) { return model.memoryBytes <= memory; });
    return best == models.rend() ? models.front() : *best;
}

void SpeechModelStore::use(const std::string& id) const {
    if (!find(id))
        throw ModelError("There is no installed model \"" + id + "\".");
    const QJsonObject choice{{QStringLiteral("id"), QString::fromStdString(id)}};
    if (folders_.configHome.empty() ||
        !defaultsOf(folders_).setData(QJsonDocument(choice).toJson(QJsonDocument::Compact), choiceKey))
        throw ModelError("The choice can't be kept: nothing can be written in \"" +
                         (folders_.configHome / "korvane").string() + "\".");
}

}  // namespace korvane
