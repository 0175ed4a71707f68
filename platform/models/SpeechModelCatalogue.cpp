#include "platform/models/SpeechModelCatalogue.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>

#include "platform/models/BuiltInModels.h"
#include "platform/models/ModelError.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* listName = "speech-models.json";
// A list of a few lines; whatever is larger is another file by mistake.
constexpr std::size_t largestListBytes = 1 << 20;
// Beyond what a double counts exactly there are no files.
constexpr double largestNumber = 9e15;

/// Reads the fields of one entry, and says which one is wrong.
class Entry {
  public:
    Entry(const std::string& source, int number, const QJsonValue& value)
        : where_(source + ", entry " + std::to_string(number)), object_(value.toObject()) {
        if (!value.isObject())
            fail("is not an object");
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw ModelError(where_ + " of \"models\" " + what + ".");
    }

    std::string text(const char* field) const {
        const auto value = object_[QLatin1String(field)];
        const std::string text = value.toString().toStdString();
        if (text.empty() || text.find('\0') != std::string::npos)
            fail("has no text \"" + std::string(field) + "\"");
        return text;
    }

    std::string optionalText(const char* field) const {
        return object_.contains(QLatin1String(field)) ? text(field) : std::string();
    }

    double number(const char* field) const {
        const double value = object_[QLatin1String(field)].toDouble(0);
        if (!(value >= 1 && value < largestNumber))
            fail("has no positive number \"" + std::string(field) + "\"");
        return value;
    }

    bool flag(const char* field, bool otherwise) const {
        const auto value = object_[QLatin1String(field)];
        if (!value.isUndefined() && !value.isBool())
            fail("has a \"" + std::string(field) + "\" that is neither true nor false");
        return value.toBool(otherwise);
    }

  private:
    std::string where_;
    QJsonObject object_;
};

bool plainName(std::string_view text) {
    return text.front() != '.' && text.front() != '-' && text.size() <= 100 &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) {
               return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '.';
           });
}

bool fetchable(std::string_view address) {
    const auto follows = [&](std::string_view scheme) {
        return address.size() > scheme.size() && address.starts_with(scheme);
    };
    return (follows("https://") || follows("http://")) &&
           std::none_of(address.begin(), address.end(), [](unsigned char c) { return c <= ' ' || c == 127; });
}

bool digest(std::string_view text) {
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

SpeechModel modelOf(const Entry& entry, const std::string& mirror) {
    SpeechModel model;
    model.id = entry.text("id");
    model.name = entry.text("name");
    model.fileName = entry.text("file");
    model.sha256 = entry.text("sha256");
    model.bytes = static_cast<std::uint64_t>(entry.number("bytes"));
    model.memoryBytes = static_cast<std::uint64_t>(entry.number("memory"));
    model.operationsPerSecond = entry.number("operations");
    model.offered = entry.flag("offered", true);
    model.address = entry.optionalText("address");
    if (model.address.empty())
        model.address = mirror.empty() ? "" : mirror + model.fileName;
    if (!plainName(model.id))
        entry.fail("has an \"id\" of other characters than letters, digits, '-', '_' and '.'");
    if (!plainName(model.fileName) || !model.fileName.ends_with(".bin"))
        entry.fail("has a \"file\" that is not a plain name with the ending .bin");
    if (!digest(model.sha256))
        entry.fail("has a \"sha256\" that is not 64 hexadecimal digits in lower case");
    if (!fetchable(model.address))
        entry.fail("has no http or https \"address\", and the list has no \"mirror\"");
    return model;
}

std::string mirrorOf(const QJsonObject& list, const std::string& source) {
    const auto value = list[QLatin1String("mirror")];
    if (value.isUndefined())
        return {};
    std::string mirror = value.toString().toStdString();
    if (!fetchable(mirror))
        throw ModelError(source + " has a \"mirror\" that is no http or https address.");
    if (!mirror.ends_with('/'))
        mirror += '/';
    return mirror;
}

QJsonObject listOf(const std::string& source, std::string_view json) {
    QJsonParseError error;
    const auto document =
        QJsonDocument::fromJson(QByteArray(json.data(), static_cast<qsizetype>(json.size())), &error);
    if (document.isNull())
        throw ModelError(source + " is not JSON: " + error.errorString().toStdString() + " at byte " +
                         std::to_string(error.offset) + ".");
    if (!document.isObject())
        throw ModelError(source + " is not an object with \"models\" or a \"mirror\".");
    return document.object();
}

/// Empty when there is no such file.
std::optional<std::string> contentOf(const fs::path& file) {
    std::error_code error;
    if (!fs::exists(file, error))
        return std::nullopt;
    if (!fs::is_regular_file(file, error))
        throw ModelError("\"" + file.string() + "\" is not a file.");
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    text.resize(largestListBytes + 1);
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!stream.eof() || stream.bad())
        throw ModelError("\"" + file.string() + "\" can't be read, or is too large for a list of models.");
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

std::vector<fs::path> listFiles(const StandardFolders& folders) {
    std::vector<fs::path> files;
    if (!folders.configHome.empty())
        files.push_back(folders.configHome / "korvane" / listName);
    for (const auto& folder : folders.configDirs)
        files.push_back(folder / "korvane" / listName);
    return files;
}

}  // namespace

SpeechModelCatalogue SpeechModelCatalogue::load(const StandardFolders& folders) {
    std::string problem;
    for (const auto& file : listFiles(folders)) {
        try {
            const auto content = contentOf(file);
            if (!content)
                continue;
            auto catalogue = parse("\"" + file.string() + "\"", *content);
            catalogue.problem_ = problem;
            return catalogue;
        } catch (const ModelError& error) {
            if (problem.empty())
                problem = error.what();
        }
    }
    auto catalogue = builtIn();
    catalogue.problem_ = problem;
    return catalogue;
}

SpeechModelCatalogue SpeechModelCatalogue::builtIn() {
    return parse("The built-in list of models", builtInSpeechModels);
}

SpeechModelCatalogue SpeechModelCatalogue::parse(const std::string& source, std::string_view json) {
    const auto list = listOf(source, json);
    const std::string mirror = mirrorOf(list, source);
    SpeechModelCatalogue catalogue;
    const auto entries = list[QLatin1String("models")];
    if (entries.isUndefined() && !mirror.empty()) {
        catalogue = builtIn();
        for (auto& model : catalogue.models_)
            model.address = mirror + model.fileName;
        return catalogue;
    }
    if (!entries.isArray())
        throw ModelError(source + " has no array \"models\".");
    std::set<std::string> names;
    int number = 0;
    for (const auto& value : entries.toArray()) {
        const Entry entry(source, ++number, value);
        catalogue.models_.push_back(modelOf(entry, mirror));
        const auto& model = catalogue.models_.back();
        // An id and a file name may be the same, but each only once.
        if (!names.insert("id " + model.id).second || !names.insert("file " + model.fileName).second)
            entry.fail("has the \"id\" or the \"file\" of an earlier one");
    }
    return catalogue;
}

std::vector<SpeechModel> SpeechModelCatalogue::offered() const {
    std::vector<SpeechModel> offered;
    std::copy_if(models_.begin(), models_.end(), std::back_inserter(offered),
                 [](const auto& model) { return model.offered; });
    return offered;
}

const SpeechModel* SpeechModelCatalogue::find(std::string_view id) const {
    const auto found =
        std::find_if(models_.begin(), models_.end(), [&](const auto& model) { return model.id == id; });
    return found == models_.end() ? nullptr : &*found;
}

const SpeechModel* SpeechModelCatalogue::findByDigest(std::string_view sha256) const {
    const auto found = std::find_if(models_.begin(), models_.end(),
                                    [&](const auto& model) { return model.sha256 == sha256; });
    return found == models_.end() ? nullptr : &*found;
}

}  // namespace korvane
