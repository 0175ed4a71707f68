#include "app/StatusTexts.h"

#include <QFile>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>

#include "editor/RuntimeTrap.h"

namespace korvane {
namespace {

constexpr double kSecondsPerMinute = 60.0;

/// "1 word", "2 words"
QString counted(std::size_t count, const QString& noun) {
    return QString::number(count) + u' ' + noun + (count == 1 ? QString() : QStringLiteral("s"));
}

/// As printf's %.1f in every locale: halves that are exact go to the even digit, unlike QString::number().
QString oneDecimal(double value) {
    std::array<char, 400> text{};  // the largest double has 309 digits
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

}  // namespace

std::optional<std::string> remainingTimeText(double elapsedSeconds, double progress) {
    if (!(progress > 0.05))
        return std::nullopt;
    const double remaining = elapsedSeconds / progress - elapsedSeconds;
    if (remaining < 5.0)
        return "Almost done…";
    if (remaining < kSecondsPerMinute)
        return "~" + std::to_string(int64FromDouble(remaining)) + "s left";
    return "~" + std::to_string(int64FromDouble(remaining / kSecondsPerMinute)) + "m " +
           std::to_string(int64FromDouble(std::fmod(remaining, kSecondsPerMinute))) + "s left";
}

QString percentText(double progress) {
    return QString::number(int64FromDouble(progress * 100.0)) + u'%';
}

QString transcribedText(std::size_t words) {
    return QStringLiteral("Transcribed — ") + counted(words, QStringLiteral("word"));
}

QString wordsTitle(std::size_t words) {
    if (words == 0)
        return QStringLiteral("Words");
    return QStringLiteral("Words — ") + counted(words, QStringLiteral("token"));
}

QString exportSummary(std::size_t words) {
    return counted(words, QStringLiteral("word")) + QStringLiteral(" · 1080 × 1920");
}

QString durationText(double seconds) {
    if (seconds < kSecondsPerMinute)
        return oneDecimal(seconds) + u's';
    const auto minutes = int64FromDouble(seconds / kSecondsPerMinute);
    const auto rest = int64FromDouble(seconds) % 60;
    return QStringLiteral("%1:%2").arg(minutes).arg(rest, 2, 10, QLatin1Char('0'));
}

QString fileName(const std::string& path) {
    return QFile::decodeName(std::filesystem::path(path).filename().c_str());
}

}  // namespace korvane
