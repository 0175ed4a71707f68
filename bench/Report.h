// What was measured, for people as a table and for programs as JSON.
#pragma once

#include <QJsonObject>
#include <optional>
#include <string>
#include <vector>

#include "bench/ResourceUse.h"

namespace korvane::bench {

/// How a ratio has to come out.
struct Goal {
    enum class Side { atLeast, atMost };
    Side side;
    double value;
};

class Report {
  public:
    /// A heading over what follows.
    void section(const std::string& title);
    /// One line that belongs to the section.
    void note(const std::string& text);

    /// The repetitions of one job.
    void runs(const std::string& name, const std::vector<ResourceUse>& repetitions);

    /// Job a over job b, repetition by repetition, once by the clock and once by processor time.
    /// The goal is for the clock.
    void ratio(const std::string& name, const std::vector<ResourceUse>& a, const std::vector<ResourceUse>& b,
               std::optional<Goal> goal);

    /// A number that stands for itself.
    void value(const std::string& name, double value, const std::string& unit,
               std::optional<Goal> goal = std::nullopt);

    bool allGoalsReached() const { return allReached_; }
    QJsonObject json() const { return json_; }

  private:
    void add(const std::string& name, QJsonObject entry);
    std::string judged(double value, std::optional<Goal> goal, QJsonObject& entry);

    QJsonObject json_;
    std::string section_;
    bool allReached_ = true;
};

}  // namespace korvane::bench
