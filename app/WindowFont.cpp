#include "app/WindowFont.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include "platform/fonts/FontLookup.h"

namespace korvane {
namespace {

/// The toolkit lists these among the families, but no font has the name.
bool isAlias(const QString& family) {
    const QStringList aliases{QStringLiteral("Sans Serif"), QStringLiteral("Serif"),
                              QStringLiteral("Monospace")};
    return aliases.contains(family, Qt::CaseInsensitive);
}

}  // namespace

QStringList windowFontFamilies(const QStringList& desktop, const QStringList& installed,
                               const std::function<QString()>& bestSans) {
    const QString emoji = QStringLiteral("Noto Color Emoji");
    QStringList families;
    for (const QString& family : QStringList{QStringLiteral("Inter")} + desktop)
        if (family != emoji && !isAlias(family) && installed.contains(family, Qt::CaseInsensitive))
            families << family;
    if (families.isEmpty())
        families << bestSans();
    families.removeAll(QString());
    families << emoji;
    return families;
}

QFont windowFont() {
    QFont font = QGuiApplication::font();
    font.setFamilies(windowFontFamilies(font.families(), QFontDatabase::families(), [] {
        return QString::fromStdString(FontLookup::familyForLanguage("en").value_or(std::string()));
    }));
    return font;
}

}  // namespace korvane
