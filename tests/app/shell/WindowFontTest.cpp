#include "app/WindowFont.h"

#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

#include "ui/controls/Theme.h"

using namespace korvane;

namespace {

QStringList names(std::initializer_list<const char*> list) {
    QStringList result;
    for (const char* name : list)
        result << QString::fromUtf8(name);
    return result;
}

QStringList families(const QStringList& desktop, const QStringList& installed) {
    return windowFontFamilies(desktop, installed, [] { return QStringLiteral("DejaVu Sans"); });
}

TEST(WindowFont, ourOwnFamilyComesFirstThenTheDesktopsThenEmoji) {
    EXPECT_EQ(
        families(names({"Cantarell"}), names({"Cantarell", "DejaVu Sans", "Inter", "Noto Color Emoji"})),
        names({"Inter", "Cantarell", "Noto Color Emoji"}));
}

TEST(WindowFont, withoutOursTheDesktopsTakesItsPlace) {
    EXPECT_EQ(families(names({"cantarell"}), names({"Cantarell", "DejaVu Sans", "Noto Color Emoji"})),
              names({"cantarell", "Noto Color Emoji"}));
}

TEST(WindowFont, anAliasIsNoFamily) {
    for (const char* alias : {"Sans Serif", "Sans", "", "Noto Color Emoji"})
        EXPECT_EQ(families(names({alias}), names({"DejaVu Sans", "Noto Color Emoji", "Sans Serif"})),
                  names({"DejaVu Sans", "Noto Color Emoji"}))
            << alias;
}

TEST(WindowFont, whereNothingIsInstalledTheToolkitChooses) {
    EXPECT_EQ(windowFontFamilies({}, {}, [] { return QString(); }), names({"Noto Color Emoji"}));
}

TEST(WindowFont, lettersAreNeverDrawnWithEmoji) {
    const QFont font = windowFont();
    ASSERT_TRUE(QFontDatabase::families().contains(font.families().constFirst(), Qt::CaseInsensitive));
    EXPECT_FALSE(QFontInfo(font).family().contains(QStringLiteral("Emoji")));
}

TEST(ThemeFont, handsOutEveryFamilyOfTheApplication) {
    const QFont before = QGuiApplication::font();
    QFont application = before;
    application.setFamilies(names({"Inter", "Noto Color Emoji"}));
    QGuiApplication::setFont(application);
    const QFont font = Theme::font(13, QFont::DemiBold);
    EXPECT_EQ(font.families(), application.families());
    EXPECT_EQ(font.pixelSize(), 13);
    EXPECT_EQ(font.weight(), QFont::DemiBold);
    QGuiApplication::setFont(before);
}

}  // namespace
