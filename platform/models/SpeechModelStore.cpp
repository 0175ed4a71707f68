#include "platform/models/SpeechModelStore.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <map>
#include <set>
#include <system_error>

#include "platform/defaults/FileUserDefaults.h"
#include "platform/models/Machine.h"
#include "platform/models/ModelDownload.h"
#include "platform/models/ModelError.h"
#include "platform/models/ModelImport.h"
#include "platform/models/VoiceModelFile.h"
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

const SpeechModel* listedAs(const SpeechModelCatalogue& catalogue, const fs::path& file) {
    const auto& models = catalogue.known();
    const auto found = std::find_if(models.begin(), models.end(),
                                    [&](const auto& model) { return file.filename() == model.fileName; });
    return found == models.end() ? nullptr : &*found;
}

/// The id of a listed model is only for the file of its name.
std::string idOfFile(const SpeechModelCatalogue& catalogue, const fs::path& file) {
    if (const auto* listed = listedAs(catalogue, file))
        return listed->id;
    std::string id = file.stem().string();
    if (id.starts_with("ggml-") && id.size() > 5)
        id.erase(0, 5);
    return catalogue.find(id) ? file.filename().string() : id;
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
    model.id = idOfFile(catalogue, file);
    // A file of a known name and length was checked by its digest when it came, or put there by an
    // administrator; hashing a gigabyte each time the list is shown would take seconds.
    if (const auto* known = listedAs(catalogue, file); known && known->bytes == shape.fileBytes) {
        model.name = known->name;
        model.memoryBytes = known->memoryBytes;
        model.operationsPerSecond = known->operationsPerSecond;
        return model;
    }
    model.name = "Whisper " + model.id;
    model.memoryBytes = shape.memoryBytes();
    model.operationsPerSecond = shape.operationsPerSecond();
    return model;
}

/// \throws ModelError
InstalledVoiceModel describeVoices(const SpeechModelCatalogue& catalogue, const fs::path& file, bool own) {
    const auto bytes = readVoiceModel(file);
    return {idOfFile(catalogue, file), file, bytes, own};
}

UnusableModelFile describeUnusable(const SpeechModelCatalogue& catalogue, const fs::path& file, bool own,
                                   std::string reason) {
    const auto* listed = listedAs(catalogue, file);
    return {idOfFile(catalogue, file),
            listed ? listed->name : file.filename().string(),
            file,
            std::move(reason),
            listed != nullptr,
            own};
}

/// All files of all folders, and no id twice.
class Survey {
  public:
    Survey(const SpeechModelCatalogue& catalogue, const StandardFolders& folders) : catalogue_(catalogue) {
        visit(folders.dataHome, true);
        for (const auto& folder : folders.dataDirs)
            visit(folder, false);
        std::stable_sort(usable.begin(), usable.end(), [](const auto& a, const auto& b) {
            return std::pair(a.operationsPerSecond, a.bytes) < std::pair(b.operationsPerSecond, b.bytes);
        });
        // An administrator's whole one serves while the person's own is damaged.
        std::erase_if(unusable, [this](const auto& file) {
            const auto hasItsId = [&](const auto& model) { return model.id == file.id; };
            return std::ranges::any_of(usable, hasItsId) || std::ranges::any_of(voices, hasItsId);
        });
    }

    std::vector<InstalledSpeechModel> usable;
    std::vector<InstalledVoiceModel> voices;
    std::vector<UnusableModelFile> unusable;

  private:
    void visit(const fs::path& folder, bool own) {
        if (folder.empty() || !visited_.insert(modelFolder(folder).lexically_normal()).second)
            return;
        for (const auto& file : modelFiles(modelFolder(folder)))
            take(file, own);
    }

    void take(const fs::path& file, bool own) {
        const auto hides = [&](const auto& earlier) { return earlier.file.filename() == file.filename(); };
        if (std::ranges::any_of(usable, hides) || std::ranges::any_of(voices, hides))
            return;
        try {
            if (looksLikeVoiceModel(file)) {
                voices.push_back(describeVoices(catalogue_, file, own));
                makeUnique(voices.back().id, file);
                return;
            }
            usable.push_back(describe(catalogue_, file, own));
            makeUnique(usable.back().id, file);
        } catch (const ModelError& error) {
            if (std::ranges::any_of(unusable, hides))
                return;
            unusable.push_back(describeUnusable(catalogue_, file, own, error.what()));
            makeUnique(unusable.back().id, file);
        }
    }

    /// "x.bin" and "ggml-x.bin" are two models: the one that comes second goes by its whole name, and by its
    /// whole path where "ggml-x.bin.bin" has that one.
    void makeUnique(std::string& id, const fs::path& file) {
        for (const auto& candidate : {id, file.filename().string(), file.string()}) {
            if (fileOfId_.try_emplace(candidate, file.filename()).first->second != file.filename())
                continue;
            id = candidate;
            return;
        }
    }

    const SpeechModelCatalogue& catalogue_;
    std::set<fs::path> visited_;
    std::map<std::string, fs::path> fileOfId_;
};

template <class Entries>
auto withId(Entries&& entries, std::string_view id)
    -> std::optional<typename std::decay_t<Entries>::value_type> {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.id == id; });
    if (found == entries.end())
        return std::nullopt;
    return *found;
}

FileUserDefaults defaultsOf(const StandardFolders& folders) {
    return FileUserDefaults(QString::fromStdString((folders.configHome / "korvane").string()));
}

struct Choice {
    std::string id;
    std::string fileName;  ///< tells two files apart of which the id has changed hands
};

Choice choiceOf(const StandardFolders& folders) {
    if (folders.configHome.empty())
        return {};
    const auto bytes = defaultsOf(folders).data(choiceKey).value_or(QByteArray());
    const auto object = QJsonDocument::fromJson(bytes).object();
    return {object[QLatin1String("id")].toString().toStdString(),
            object[QLatin1String("file")].toString().toStdString()};
}

[[noreturn]] void refuseVoices(const std::string& id) {
    throw ModelError("The model \"" + id +
                     "\" tells voices from other sounds and recognises no words; it is "
                     "used beside one that does.");
}

void removeFile(const fs::path& file) {
    std::error_code error;
    fs::remove(file, error);
    if (error)
        throw ModelError("\"" + file.string() + "\" can't be removed: " + error.message() + ".");
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
    return Survey(catalogue_, folders_).usable;
}

std::vector<UnusableModelFile> SpeechModelStore::unusable() const {
    return Survey(catalogue_, folders_).unusable;
}

std::vector<InstalledVoiceModel> SpeechModelStore::voiceModels() const {
    return Survey(catalogue_, folders_).voices;
}

std::optional<InstalledSpeechModel> SpeechModelStore::find(std::string_view id) const {
    return withId(installed(), id);
}

std::optional<UnusableModelFile> SpeechModelStore::findUnusable(std::string_view id) const {
    return withId(unusable(), id);
}

InstalledSpeechModel SpeechModelStore::resolve(const std::string& idOrFile) const {
    if (auto model = find(idOrFile))
        return *model;
    std::error_code error;
    if (looksLikeVoiceModel(idOrFile) || withId(voiceModels(), idOrFile))
        refuseVoices(idOrFile);
    if (!idOrFile.empty() && fs::exists(idOrFile, error))
        return describe(catalogue_, idOrFile, false);
    if (const auto file = findUnusable(idOrFile))
        throw ModelError(file->reason);
    throw ModelError("There is no installed model and no file \"" + idOrFile +
                     "\"; korvane-cli models list shows what there is.");
}

InstalledSpeechModel SpeechModelStore::add(const fs::path& file, const std::stop_token& stop,
                                           const std::function<void(double)>& progress) const {
    if (looksLikeVoiceModel(file)) {
        describeVoices(catalogue_, file, true);
        const auto copy = importModelFile(file, folder(), catalogue_, stop, progress);
        const auto added = describeVoices(catalogue_, copy, true);
        return {.id = added.id,
                .name = "Voice model " + added.id,
                .file = copy,
                .bytes = added.bytes,
                .own = true};
    }
    describe(catalogue_, file, false);
    const auto copy = importModelFile(file, folder(), catalogue_, stop, progress);
    for (auto& model : installed()) {
        if (model.file == copy)
            return model;
    }
    return describe(catalogue_, copy, true);  // says what has happened to it since
}

void SpeechModelStore::remove(std::string_view id) const {
    folder();  // says that there is none, which is more than that it holds no such model
    const Survey all(catalogue_, folders_);
    const auto model = withId(all.usable, id);
    const auto voices = withId(all.voices, id);
    const auto unusable = withId(all.unusable, id);
    if (!model && !voices && !unusable)
        throw ModelError("There is no installed model \"" + std::string(id) + "\".");
    const fs::path file = model ? model->file : voices ? voices->file : unusable->file;
    if (!(model ? model->own : voices ? voices->own : unusable->own))
        throw ModelError("The model \"" + std::string(id) + "\" is the system's, in \"" +
                         file.parent_path().string() + "\"; only an administrator can remove it.");
    removeFile(file);
    if (const auto* known = catalogue_.find(id))
        discardPart(*known, *this);
}

std::optional<InstalledSpeechModel> SpeechModelStore::inUse() const {
    const auto models = installed();
    if (models.empty())
        return std::nullopt;
    const auto chosen = choiceOf(folders_);
    const auto found = std::find_if(models.begin(), models.end(), [&](const auto& model) {
        return model.file.filename().string() == chosen.fileName;
    });
    if (found != models.end())
        return *found;
    if (const auto model = withId(models, chosen.id))
        return model;
    const auto memory = Machine::usableMemoryBytes();
    const auto best = std::find_if(models.rbegin(), models.rend(),
                                   [&](const auto& model) { return model.memoryBytes <= memory; });
    return best == models.rend() ? models.front() : *best;
}

void SpeechModelStore::use(const std::string& id) const {
    const auto model = find(id);
    if (!model) {
        if (withId(voiceModels(), id))
            refuseVoices(id);
        const auto file = findUnusable(id);
        throw ModelError(file ? file->reason : "There is no installed model \"" + id + "\".");
    }
    const QJsonObject choice{
        {QStringLiteral("id"), QString::fromStdString(id)},
        {QStringLiteral("file"), QString::fromStdString(model->file.filename().string())}};
    if (folders_.configHome.empty() ||
        !defaultsOf(folders_).setData(QJsonDocument(choice).toJson(QJsonDocument::Compact), choiceKey))
        throw ModelError("The choice can't be kept: nothing can be written in \"" +
                         (folders_.configHome / "korvane").string() + "\".");
}

void SpeechModelStore::useFromNow(const std::string& id) const {
    if (!find(id))
        return;
    try {
        use(id);
    } catch (const ModelError&) {
    }
}

}  // namespace korvane
