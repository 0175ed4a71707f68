#include "Icon.h"

#include <gtest/gtest.h>

#include <set>

#include "IconShapes.h"
#include "Stage.h"

namespace korvane {

namespace {

const QStringList wanted =
    QStringLiteral(
        "text.bubble play.rectangle.fill xmark.circle.fill play.circle "
        "arrow.down.circle.fill captions.bubble.fill exclamationmark.triangle.fill film "
        "waveform stop.fill globe chevron.up.chevron.down chevron.down magnifyingglass "
        "eyedropper checkmark xmark minus square square.on.square folder info.circle")
        .split(QLatin1Char(' '));

QImage drawn(const QString& name, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(pixels / iconBox, pixels / iconBox);
    EXPECT_TRUE(drawIcon(painter, name, Qt::white));
    return image;
}

// Of the picture's area, 0 to 1.
double inked(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qAlpha(image.pixel(x, y)) / 255.0;
        }
    }
    return sum / (image.width() * image.height());
}

int warnings = 0;

void countWarnings(QtMsgType type, const QMessageLogContext&, const QString&) {
    warnings += type == QtWarningMsg ? 1 : 0;
}

}  // namespace

TEST(IconShapes, haveEveryNameOfTheScreen) {
    const QStringList names = iconNames();
    EXPECT_EQ(std::set<QString>(names.begin(), names.end()), std::set<QString>(wanted.begin(), wanted.end()));
}

TEST(IconShapes, drawAsMuchInkAtEveryScale) {
    for (const QString& name : wanted) {
        const double reference = inked(drawn(name, 192));
        EXPECT_GT(reference, 0.02) << name.toStdString();
        for (const int pixels : {14, 17, 18, 21, 28, 35, 42, 48, 56}) {
            EXPECT_NEAR(inked(drawn(name, pixels)) / reference, 1, 0.22)
                << name.toStdString() << ' ' << pixels;
        }
    }
}

TEST(IconShapes, stayInsideTheirBox) {
    for (const QString& name : wanted) {
        QImage image(72, 72, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.translate(12, 12);
        painter.scale(2, 2);
        drawIcon(painter, name, Qt::white);
        painter.end();
        for (int i = 0; i < 72; ++i) {
            EXPECT_EQ(qAlpha(image.pixel(i, 11)) + qAlpha(image.pixel(i, 60)), 0) << name.toStdString();
            EXPECT_EQ(qAlpha(image.pixel(11, i)) + qAlpha(image.pixel(60, i)), 0) << name.toStdString();
        }
    }
}

TEST(IconShapes, holesOfFilledOnesAreSeeThrough) {
    EXPECT_EQ(qAlpha(drawn(QStringLiteral("xmark.circle.fill"), 96).pixel(48, 48)), 0);
    EXPECT_EQ(qAlpha(drawn(QStringLiteral("play.rectangle.fill"), 96).pixel(48, 48)), 0);
    EXPECT_EQ(qAlpha(drawn(QStringLiteral("exclamationmark.triangle.fill"), 96).pixel(48, 44)), 0);
    EXPECT_EQ(qAlpha(drawn(QStringLiteral("stop.fill"), 96).pixel(48, 48)), 255);
}

TEST(IconShapes, aThinLevelLineIsCrispAtTheSmallestSize) {
    const QImage image = drawn(QStringLiteral("minus"), 14);
    int rows = 0;
    for (int y = 0; y < 14; ++y) {
        rows += qAlpha(image.pixel(7, y)) > 20 ? 1 : 0;
    }
    EXPECT_LE(rows, 2);
    EXPECT_EQ(inked(drawn(QStringLiteral("square"), 24)) > 0, true);
}

TEST(Icon, isDrawnInItsColorAtItsSize) {
    Stage stage(
        R"qml(Item { Icon { objectName: "icon"; x: 10; y: 10; size: 28; name: "stop.fill"; color: Theme.stopHi } })qml");
    EXPECT_EQ(stage.item("icon").width(), 28);
    EXPECT_EQ(stage.item("icon").height(), 28);
    EXPECT_EQ(stage.picture().pixelColor(24, 24).red(), 242);
    stage.item("icon").setProperty("color", QColor(Qt::green));
    EXPECT_EQ(stage.picture().pixelColor(24, 24), QColor(Qt::green));
    stage.item("icon").setProperty("name", QStringLiteral("square"));
    EXPECT_EQ(stage.picture().pixelColor(24, 24), QColor(Qt::black));
}

TEST(Icon, ofAnUnknownNameDrawsNothingAndWarnsOnce) {
    warnings = 0;
    const QtMessageHandler before = qInstallMessageHandler(countWarnings);
    Stage stage(
        R"qml(Item { Icon { x: 10; y: 10; size: 28; name: "no.such.icon" } Icon { name: "no.such.icon" } })qml");
    const QImage picture = stage.picture();
    qInstallMessageHandler(before);
    EXPECT_EQ(warnings, 1);
    for (int i = 0; i < 28; ++i) {
        EXPECT_EQ(picture.pixelColor(10 + i, 24), QColor(Qt::black));
    }
}

}  // namespace korvane
