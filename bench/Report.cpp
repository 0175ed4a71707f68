#include "bench/Report.h"

#include <QJsonArray>
#include <cstdio>
#include <functional>

#include "bench/Statistics.h"

namespace korvane::bench {
namespace {

constexpr double kMega = 1e6;

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

std::vector<double> each(const std::vector<ResourceUse>& repetitions,
                         const std::function<double(const ResourceUse&)>& of) {
    std::vector<double> values;
    for (const ResourceUse& use : repetitions)
        values.push_back(of(use));
    return values;
}

QJsonObject described(const std::vector<double>& values) {
    const Summary s = summarize(values);
    QJsonArray all;
    for (const double v : values)
        all.append(v);
    return {{QStringLiteral("median"), s.median},
            {QStringLiteral("least"), s.least},
            {QStringLiteral("most"), s.most},
            {QStringLiteral("all"), all}};
}

std::vector<double> quotients(const std::vector<ResourceUse>& a, const std::vector<ResourceUse>& b,
                              double ResourceUse::*of) {
    std::vector<double> values;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        values.push_back(a[i].*of / b[i].*of);
    return values;
}

}  // namespace

void Report::add(const std::string& name, QJsonObject entry) {
    QJsonObject section = json_.value(text(section_)).toObject();
    section.insert(text(name), entry);
    json_.insert(text(section_), section);
}

void Report::section(const std::string& title) {
    section_ = title;
    std::printf("\n%s\n", title.c_str());
    std::fflush(stdout);
}

void Report::note(const std::string& line) {
    std::printf("  %s\n", line.c_str());
    QJsonObject section = json_.value(text(section_)).toObject();
    QJsonArray notes = section.value(QStringLiteral("notes")).toArray();
    notes.append(text(line));
    section.insert(QStringLiteral("notes"), notes);
    json_.insert(text(section_), section);
}

void Report::runs(const std::string& name, const std::vector<ResourceUse>& repetitions) {
    const auto wall = each(repetitions, [](const ResourceUse& u) { return u.wallSeconds; });
    const auto processor = each(repetitions, [](const ResourceUse& u) { return u.processorSeconds; });
    const auto peak =
        each(repetitions, [](const ResourceUse& u) { return static_cast<double>(u.peakBytes) / kMega; });
    const Summary w = summarize(wall);
    const Summary p = summarize(processor);
    std::printf("  %-34s %8.2f s (%.2f to %.2f)   processor %8.2f s   peak %5.0f MB\n", name.c_str(),
                w.median, w.least, w.most, p.median, summarize(peak).most);
    std::fflush(stdout);
    add(name, {{QStringLiteral("wallSeconds"), described(wall)},
               {QStringLiteral("processorSeconds"), described(processor)},
               {QStringLiteral("peakMegabytes"), described(peak)}});
}

std::string Report::judged(double value, std::optional<Goal> goal, QJsonObject& entry) {
    if (!goal)
        return "";
    const bool atLeast = goal->side == Goal::Side::atLeast;
    const bool reached = atLeast ? value >= goal->value : value <= goal->value;
    allReached_ = allReached_ && reached;
    entry.insert(atLeast ? QStringLiteral("atLeast") : QStringLiteral("atMost"), goal->value);
    entry.insert(QStringLiteral("reached"), reached);
    char line[64];
    std::snprintf(line, sizeof line, "   goal %s %g: %s", atLeast ? "at least" : "at most", goal->value,
                  reached ? "reached" : "MISSED");
    return line;
}

void Report::ratio(const std::string& name, const std::vector<ResourceUse>& a,
                   const std::vector<ResourceUse>& b, std::optional<Goal> goal) {
    const auto wall = quotients(a, b, &ResourceUse::wallSeconds);
    const auto processor = quotients(a, b, &ResourceUse::processorSeconds);
    const Summary w = summarize(wall);
    QJsonObject entry{{QStringLiteral("wall"), described(wall)},
                      {QStringLiteral("processor"), described(processor)}};
    const std::string judgement = judged(w.median, goal, entry);
    std::printf("  %-34s %8.2f   (%.2f to %.2f)   by processor time %.2f%s\n", name.c_str(), w.median,
                w.least, w.most, summarize(processor).median, judgement.c_str());
    std::fflush(stdout);
    add(name, entry);
}

void Report::value(const std::string& name, double v, const std::string& unit, std::optional<Goal> goal) {
    QJsonObject entry{{QStringLiteral("value"), v}, {QStringLiteral("unit"), text(unit)}};
    const std::string judgement = judged(v, goal, entry);
    std::printf("  %-34s %8.2f %s%s\n", name.c_str(), v, unit.c_str(), judgement.c_str());
    add(name, entry);
}

}  // namespace korvane::bench
