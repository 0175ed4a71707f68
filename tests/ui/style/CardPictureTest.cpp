#include <QDir>
#include <QImage>

#include "CardWindow.h"

namespace korvane {
namespace {

/// What the card looks like; kept as <folder>/<name>.png when KORVANE_PICTURES names a folder.
QImage pictureOf(CardWindow& card, const char* name) {
    const QImage picture = card.window.grabWindow();
    const QString folder = qEnvironmentVariable("KORVANE_PICTURES");
    if (!folder.isEmpty()) {
        EXPECT_TRUE(picture.save(QDir(folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png"))));
    }
    return picture;
}

class CardPicture : public ::testing::Test {
  protected:
    EditedStyle style{StyleFonts::installed()};

    void SetUp() override { style.readFonts(); }
};

TEST_F(CardPicture, atEachWidthNothingReachesIntoAnything) {
    for (const int width : {560, 640, 1100}) {
        CardWindow card(style, width);
        const auto* content = card.find("position")->parentItem()->parentItem();
        for (const char* name : {"font", "weight", "size", "sizeLabel", "color", "shadow", "shadowColor",
                                 "blur", "blurLabel", "position", "bounce"}) {
            const auto* item = card.find(name);
            const QRectF place = item->mapRectToItem(content, {0, 0, item->width(), item->height()});
            EXPECT_TRUE(QRectF(0, 0, content->width(), content->height()).contains(place)) << name << width;
            for (const char* other : {"font", "weight", "size", "sizeLabel", "color", "shadow", "shadowColor",
                                      "blur", "blurLabel", "position", "bounce"}) {
                const auto* second = card.find(other);
                const QRectF there =
                    second->mapRectToItem(content, {0, 0, second->width(), second->height()});
                EXPECT_FALSE(second != item && there.intersects(place)) << name << " and " << other << width;
            }
        }
        pictureOf(card, qPrintable(QStringLiteral("card-%1").arg(width)));
    }
}

TEST_F(CardPicture, withAndWithoutShadowEverythingElseStaysInPlace) {
    CardWindow card(style);
    const QImage with = pictureOf(card, "shadow-on");
    const auto place = [&](const char* name) { return card.find(name)->mapToScene({}); };
    const QPointF blur = place("blur");
    const double height = card.card->height();
    style.editor.setHasShadow(false);
    EXPECT_FALSE(card.find("shadowColor")->isVisible());
    EXPECT_EQ(place("blur"), blur);
    EXPECT_EQ(card.card->height(), height);
    EXPECT_NE(pictureOf(card, "shadow-off"), with);
}

TEST_F(CardPicture, popupsStayInsideTheWindow) {
    style.editor.chooseFamily(QStringLiteral("Inter"));
    for (const char* name : {"font", "weight", "color", "shadowColor"}) {
        CardWindow card(style, 560, 460);
        card.click(name);
        ASSERT_TRUE(QTest::qWaitFor([&] { return card.find(name)->property("opened").toBool(); })) << name;
        const auto* popup = card.window.contentItem()->childItems().back()->childItems().back();
        const QRectF place = popup->mapRectToScene({0, 0, popup->width(), popup->height()});
        EXPECT_GT(place.width(), 80) << name;
        EXPECT_TRUE(QRectF(0, 0, 560, 460).contains(place)) << name;
        pictureOf(card, qPrintable(QStringLiteral("popup-") + QLatin1String(name)));
    }
}

}  // namespace
}  // namespace korvane
