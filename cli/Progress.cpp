#include "cli/Progress.h"

#include <algorithm>
#include <cmath>

namespace korvane::cli {
namespace {

constexpr double extractionShare = 0.3;
constexpr int barColumns = 24;

// One column for each code point: true for everything this file writes.
int columnsOf(std::string_view text) {
    return static_cast<int>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string bar(double overall) {
    const int filled = std::clamp(static_cast<int>(overall * barColumns), 0, barColumns);
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(barColumns - filled), '.') + "]";
}

}  // namespace

std::string_view phaseLabel(Phase phase) {
    switch (phase) {
        case Phase::extractingAudio:
            return "Extracting audio";
        case Phase::transcribing:
            return "Transcribing";
        case Phase::exportingVideo:
            return "Exporting video";
        case Phase::downloadingModel:
            return "Downloading";
        case Phase::copyingModel:
            return "Copying";
    }
    return "";
}

double overallProgress(Phase phase, double fraction) {
    switch (phase) {
        case Phase::extractingAudio:
            return fraction * extractionShare;
        case Phase::transcribing:
            return extractionShare + fraction * (1.0 - extractionShare);
        case Phase::exportingVideo:
        case Phase::downloadingModel:
        case Phase::copyingModel:
            return fraction;
    }
    return 0.0;
}

std::optional<std::string> etaText(const ProgressState& state) {
    // Taking the sound out is a matter of a moment, and says nothing about the recognition that follows.
    const bool shared = state.phase == Phase::extractingAudio || state.phase == Phase::transcribing;
    const double tooEarly = shared ? extractionShare + 0.05 : 0.05;
    if (!(state.overall > tooEarly))
        return std::nullopt;
    const double remaining = state.elapsedSeconds / state.overall - state.elapsedSeconds;
    if (remaining < 5.0)
        return "Almost done…";
    if (remaining < 60.0)
        return "~" + std::to_string(static_cast<long long>(remaining)) + "s left";
    return "~" + std::to_string(static_cast<long long>(remaining / 60.0)) + "m " +
           std::to_string(static_cast<long long>(std::fmod(remaining, 60.0))) + "s left";
}

int percent(const ProgressState& state) {
    return static_cast<int>(std::clamp(state.overall, 0.0, 1.0) * 100.0);
}

std::string progressLine(const ProgressState& state, int columns) {
    const std::string label(phaseLabel(state.phase));
    const std::string number = std::to_string(percent(state)) + "%";
    const std::string padded = std::string(4 - std::min<std::size_t>(number.size(), 4), ' ') + number;
    const std::string estimate = state.detail.empty() ? etaText(state).value_or("") : state.detail;
    const std::string time = state.overall < 1.0 ? estimate : "";
    const std::string tail = time.empty() ? "" : "  " + time;

    std::string whole = label + "  " + bar(state.overall) + padded + tail;
    if (columnsOf(whole) <= columns)
        return whole;
    std::string withoutBar = label + " " + padded + tail;
    if (columnsOf(withoutBar) <= columns)
        return withoutBar;
    std::string brief = label + " " + padded;
    if (columnsOf(brief) <= columns)
        return brief;
    return columnsOf(number) <= columns ? number : "";
}

std::string plainProgressLine(const ProgressState& state) {
    return std::string(phaseLabel(state.phase)) + ": " + std::to_string(percent(state)) + "%";
}

bool PlainProgressThinning::worthALine(const ProgressState& state) {
    const Step step{state.phase, percent(state) / 10};
    if (last_ && last_->phase == step.phase && last_->tenth >= step.tenth)
        return false;
    last_ = step;
    return true;
}

}  // namespace korvane::cli
