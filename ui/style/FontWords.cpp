#include "ui/style/FontWords.h"

#include <QRegularExpression>
#include <algorithm>

namespace korvane {

QString weightInPostScriptName(const std::string& postscript) {
    const auto name = QString::fromStdString(postscript);
    QString words = name.section(QLatin1Char('-'), 1);
    static const QRegularExpression kInnerCapital(QStringLiteral("(?<=[a-z])(?=[A-Z])"));
    words.replace(kInnerCapital, QStringLiteral(" "));
    return words.isEmpty() ? QStringLiteral("Regular") : words;
}

QString substitutionNote(const SubtitleSettings& stored, bool familyIsInstalled, const FontFace& drawn) {
    if (drawn.postScriptName == stored.fontPostscriptName)
        return {};
    QString missing = QString::fromStdString(stored.fontFamilyName);
    if (familyIsInstalled)
        missing += QLatin1Char(' ') + weightInPostScriptName(stored.fontPostscriptName);
    QString taken = QString::fromStdString(drawn.family);
    if (!drawn.style.empty())
        taken += QLatin1Char(' ') + QString::fromStdString(drawn.style);
    return QStringLiteral("%1 isn’t installed here; %2 takes its place.").arg(missing, taken);
}

QString foldedForSearch(const QString& text) {
    const QString decomposed = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    QString folded;
    std::copy_if(decomposed.begin(), decomposed.end(), std::back_inserter(folded),
                 [](QChar character) { return !character.isMark(); });
    return folded;
}

bool matchesAllWords(const QString& foldedName, const QStringList& foldedWords) {
    return std::all_of(foldedWords.begin(), foldedWords.end(),
                       [&foldedName](const QString& word) { return foldedName.contains(word); });
}

}  // namespace korvane
