// The times of the words, by bench/word-timing/run; its README says what each number means.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench/ChildProcess.h"
#include "bench/Measurements.h"
#include "bench/whisper/InstalledModels.h"
#include "bench/window/WindowJob.h"

namespace korvane::bench {
namespace {

using Side = Goal::Side;
namespace fs = std::filesystem;

/// Runs it and returns what it wrote.
QJsonObject runScript(const Setting& setting, CommandLine arguments) {
    const fs::path folder = setting.files.folder() / "word-timing";
    fs::create_directories(folder);
    const fs::path written = folder / "numbers.json";
    fs::remove(written);
    arguments.insert(arguments.begin(),
                     {"python3", KORVANE_WORD_TIMING, "--no-verdict", "--json", written.string(), "--files",
                      folder.string(), "--refiner", program(setting, "korvane-bench-word-times")});
    runChild(arguments);
    QFile file(QString::fromStdString(written.string()));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("bench/word-timing/run wrote no numbers.");
    return QJsonDocument::fromJson(file.readAll()).object();
}

double at(const QJsonObject& parts, const char* part, const char* figure) {
    return parts[QLatin1String(part)].toObject()[QLatin1String(figure)].toDouble();
}

void reportCondition(const std::string& name, const QJsonObject& scores, Report& report) {
    const auto value = [&](const char* text, double number, const char* unit) {
        report.value(name + ", " + text, number, unit);
    };
    if (scores.contains(QLatin1String("word error rate")))
        value("word error rate", scores[QLatin1String("word error rate")].toDouble(), "of the words");
    value("inside, median", at(scores, "inside", "median"), "ms");
    value("inside, 90 %", at(scores, "inside", "p90"), "ms");
    value("edges, median", at(scores, "phrase edges", "median"), "ms");
    value("edges within 20 ms", at(scores, "phrase edges", "within 20 ms"), "of all");
    value("edges within 50 ms", at(scores, "phrase edges", "within 50 ms"), "of all");
    value("clean cuts of a word", at(scores, "one word removed", "clean"), "of all");
    value("clean cuts of a phrase", at(scores, "a phrase removed", "clean"), "of all");
}

/// \param hasGoals  the goals are for the recogniser that everyone has.
void reportEngine(const QJsonObject& numbers, Report& report, bool hasGoals) {
    const QJsonObject conditions = numbers[QLatin1String("conditions")].toObject();
    for (const QString& name : conditions.keys()) {
        const QJsonObject scores = conditions[name].toObject();
        reportCondition(name.toStdString(), scores, report);
        report.value(name.toStdString() + ", processor time",
                     scores[QLatin1String("processor time / sound")].toDouble(), "of the sound's length");
    }
    for (const auto& entry : numbers[QLatin1String("goals")].toArray()) {
        const QJsonObject one = entry.toObject();
        const Goal goal{one[QLatin1String("atMost")].toBool() ? Side::atMost : Side::atLeast,
                        one[QLatin1String("goal")].toDouble()};
        report.value("clean: " + one[QLatin1String("part")].toString().toStdString() + ", " +
                         one[QLatin1String("figure")].toString().toStdString(),
                     one[QLatin1String("value")].toDouble(), "",
                     hasGoals ? std::optional(goal) : std::nullopt);
    }
}

std::string transcribing(const Setting& setting, const std::string& engine) {
    const fs::path cli = fs::path(setting.worker).parent_path().parent_path() / "cli" / "korvane-cli";
    return '\'' + cli.string() + "' transcribe {file} -l en-US -f json -q " + engine;
}

}  // namespace

void measureWordTiming(const Setting& setting, Report& report, bool cleanOnly) {
    const CommandLine some = cleanOnly ? CommandLine{"--quick"} : CommandLine{};
    const auto measure = [&](const std::string& name, const std::string& engine, bool hasGoals) {
        CommandLine arguments = some;
        arguments.insert(arguments.end(), {"--engine", transcribing(setting, engine)});
        const QJsonObject numbers = runScript(setting, arguments);
        report.section("Times of the words: " + name);
        reportEngine(numbers, report, hasGoals);
    };
    measure("PocketSphinx", "--engine pocketsphinx", true);
    for (const WhisperModel& model : installedWhisperModels(setting).models)
        measure(model.name, "--engine whisper --model '" + model.file + '\'', false);
    if (cleanOnly)
        return;
    const QJsonObject disturbed = runScript(setting, {"--disturbed"});
    report.section("Times of the words: the stage behind every recogniser, on coarse times");
    const QJsonObject conditions = disturbed[QLatin1String("conditions")].toObject();
    for (const QString& name : conditions.keys())
        reportCondition(name.toStdString(), conditions[name].toObject(), report);
}

}  // namespace korvane::bench
