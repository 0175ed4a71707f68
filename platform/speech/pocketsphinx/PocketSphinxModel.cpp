#include "platform/speech/pocketsphinx/PocketSphinxModel.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <utility>

#include "platform/speech/SpeechRecognizer.h"
#include "platform/speech/pocketsphinx/ModelFileSizes.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

/// Sorted, so that the same folder gives the same model everywhere. Empty when it can't be listed.
std::set<fs::path> entries(const fs::path& folder) {
    std::error_code error;
    std::set<fs::path> found;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        found.insert(entry->path());
    return found;
}

template <class Matches>
fs::path firstEntry(const fs::path& folder, const Matches& matches) {
    const auto all = entries(folder);
    const auto found = std::find_if(all.begin(), all.end(), matches);
    return found == all.end() ? fs::path() : *found;
}

bool isAcousticModel(const fs::path& path) {
    return isFile(path / "mdef") && isFile(path / "feat.params");
}

/// The distribution puts an n-gram model of phones beside that of words.
bool isLanguageModel(const fs::path& path) {
    const auto name = path.filename().string();
    const bool isModel = name.ends_with(".lm.bin") || name.ends_with(".lm") || name.ends_with(".lm.dmp");
    return isModel && name.find("-phone.") == std::string::npos && isFile(path);
}

bool isDictionary(const fs::path& path) {
    return path.extension() == ".dict" && isFile(path);
}

/// The settings that come with an acoustic model are words in pairs: name, value.
int rateIn(const fs::path& settings) {
    std::ifstream file(settings);
    int rateHz = 16000;
    for (std::string name, value; file >> name >> value;) {
        if (name == "-samprate")
            rateHz = static_cast<int>(std::strtod(value.c_str(), nullptr));
    }
    return rateHz;
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

/// Anything else could name a folder that isn't a model's.
bool isPlainIdentifier(const std::string& identifier) {
    return !identifier.empty() && std::all_of(identifier.begin(), identifier.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '_';
    });
}

}  // namespace

std::optional<PocketSphinxModel> PocketSphinxModel::inFolder(const fs::path& folder) {
    PocketSphinxModel model;
    model.folder = folder;
    model.acousticModel = firstEntry(folder, isAcousticModel);
    model.languageModel = firstEntry(folder, isLanguageModel);
    model.dictionary = firstEntry(folder, isDictionary);
    if (model.acousticModel.empty() || model.languageModel.empty() || model.dictionary.empty())
        return std::nullopt;
    model.rateHz = rateIn(model.acousticModel / "feat.params");
    return model;
}

void PocketSphinxModel::check() const {
    const auto refuse = [](const fs::path& file) {
        throw RecognitionError("The speech model file '" + file.string() +
                               "' is damaged; install the model again.");
    };
    std::error_code error;
    for (const auto& file : {languageModel, dictionary, acousticModel / "feat.params"}) {
        if (fs::file_size(file, error) == 0 || error)
            refuse(file);
    }
    if (!isCompletePhoneDefinition(acousticModel / "mdef"))
        refuse(acousticModel / "mdef");
    if (isFile(acousticModel / "sendump") && !isCompleteMixtureDump(acousticModel / "sendump"))
        refuse(acousticModel / "sendump");
    if (rateHz < 8000 || rateHz > 48000 || rateHz % 1000 != 0)
        refuse(acousticModel / "feat.params");
}

PocketSphinxModels::PocketSphinxModels(StandardFolders folders, fs::path distribution)
    : folders_(std::move(folders)), distribution_(std::move(distribution)) {}

std::optional<PocketSphinxModel> PocketSphinxModels::find(const Locale& locale) const {
    if (!isPlainIdentifier(locale.identifier))
        return std::nullopt;
    struct Place {
        fs::path folder;
        bool fromDistribution;
    };
    std::vector<Place> places;
    const auto own = fs::path("korvane") / "models" / "pocketsphinx";
    if (!folders_.dataHome.empty())
        places.push_back({folders_.dataHome / own, false});
    for (const auto& dataDir : folders_.dataDirs)
        places.push_back({dataDir / own, false});
    if (!distribution_.empty())
        places.push_back({distribution_, true});
    for (const auto& dataDir : folders_.dataDirs)
        places.push_back({dataDir / "pocketsphinx" / "model", true});

    for (const auto& place : places) {
        for (const auto& name : {locale.identifier, lowerCase(locale.identifier)}) {
            if (auto model = PocketSphinxModel::inFolder(place.folder / name)) {
                model->fromDistribution = place.fromDistribution;
                return model;
            }
        }
    }
    return std::nullopt;
}

fs::path PocketSphinxModels::personalFolder(const Locale& locale) const {
    return folders_.dataHome / "korvane" / "models" / "pocketsphinx" / locale.identifier;
}

}  // namespace korvane
