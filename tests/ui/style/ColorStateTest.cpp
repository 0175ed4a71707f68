#include "ui/style/ColorState.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <limits>

#include "ui/style/ColorConversion.h"

namespace korvane {
namespace {

QString hex(const char* text) {
    return QString::fromLatin1(text);
}

TEST(ColorState, beginsWithWhite) {
    const ColorState state;
    EXPECT_EQ(state.color(), QColor(Qt::white));
    EXPECT_EQ(state.hexText(), hex("#FFFFFF"));
}

TEST(ColorState, knowsHueSaturationAndBrightness) {
    const struct {
        QColor color;
        double hue, saturation, brightness;
    } rows[] = {
        {QColor(255, 0, 0), 0, 1, 1},        {QColor(255, 255, 0), 60, 1, 1},
        {QColor(0, 255, 0), 120, 1, 1},      {QColor(0, 255, 255), 180, 1, 1},
        {QColor(0, 0, 255), 240, 1, 1},      {QColor(255, 0, 255), 300, 1, 1},
        {QColor(51, 102, 255), 225, 0.8, 1}, {QColor(51, 51, 102), 240, 0.5, 0.4},
    };
    for (const auto& row : rows) {
        ColorState state;
        state.setColor(row.color);
        EXPECT_NEAR(state.hue() * 360, row.hue, 1e-9) << row.color.name().toStdString();
        EXPECT_NEAR(state.saturation(), row.saturation, 1e-9);
        EXPECT_NEAR(state.brightness(), row.brightness, 1e-9);
    }
}

TEST(ColorState, everyEightBitColourComesBackFromItsHue) {
    for (int red = 0; red < 256; red += 15) {
        for (int green = 0; green < 256; green += 17) {
            for (int blue = 0; blue < 256; blue += 5) {
                const QColor wanted(red, green, blue);
                ColorState state;
                state.setColor(wanted);
                const auto saturation = state.saturation();
                const auto brightness = state.brightness();
                state.pickInField(0.123, 0.987);
                state.pickInField(saturation, brightness);
                ASSERT_EQ(state.color().rgb(), wanted.rgb());
            }
        }
    }
}

TEST(ColorState, aDragThroughTheDarkAndTheGreyComesBackInTheSameHue) {
    ColorState state;
    state.setColor(QColor(51, 102, 255));
    QObject::connect(&state, &ColorState::picked, &state, &ColorState::setColor);  // as the style's echo does
    state.pickInField(0.8, 0.0);
    EXPECT_EQ(state.color(), QColor(Qt::black));
    EXPECT_NEAR(state.hue() * 360, 225, 1e-9);
    EXPECT_NEAR(state.saturation(), 0.8, 1e-9);
    state.pickInField(0.0, 0.5);
    EXPECT_EQ(state.color(), QColor(128, 128, 128));
    state.pickInField(0.8, 1.0);
    EXPECT_EQ(state.color(), QColor(51, 102, 255));
}

TEST(ColorState, aGreyFromOutsideKeepsTheHueAndBlackTheSaturation) {
    ColorState state;
    state.setColor(QColor(51, 102, 255));
    state.setColor(QColor(90, 90, 90));
    EXPECT_NEAR(state.hue() * 360, 225, 1e-9);
    EXPECT_EQ(state.saturation(), 0.0);
    state.setColor(QColor(51, 102, 255));
    state.setColor(QColor(Qt::black));
    EXPECT_NEAR(state.saturation(), 0.8, 1e-9);
}

TEST(ColorState, theHuesOfGreyMoveWithoutChangingTheColour) {
    ColorState state;
    QSignalSpy picked(&state, &ColorState::picked);
    state.pickHue(0.5);
    EXPECT_EQ(state.hue(), 0.5);
    EXPECT_EQ(state.hueColor(), QColor(0, 255, 255));
    EXPECT_EQ(picked.count(), 0);
    state.pickInField(1.0, 1.0);
    EXPECT_EQ(picked.count(), 1);
    EXPECT_EQ(state.color(), QColor(0, 255, 255));
}

TEST(ColorState, bothEndsOfTheStripAreRed) {
    ColorState state;
    state.pickInField(1, 1);
    EXPECT_EQ(state.color(), QColor(Qt::red));
    state.pickHue(1.0);
    EXPECT_EQ(state.color(), QColor(Qt::red));
    EXPECT_EQ(state.hue(), 1.0) << "the knob stays where it was put";
}

TEST(ColorState, beyondTheEdgesCountsAsOnThem) {
    ColorState state;
    state.pickInField(7, -3);
    EXPECT_EQ(state.saturation(), 1.0);
    EXPECT_EQ(state.brightness(), 0.0);
    state.pickHue(-1);
    EXPECT_EQ(state.hue(), 0.0);
}

TEST(ColorState, aColourFromOutsideIsNotPicked) {
    ColorState state;
    QSignalSpy picked(&state, &ColorState::picked);
    QSignalSpy changed(&state, &ColorState::colorChanged);
    state.setColor(QColor(1, 2, 3));
    state.setColor(QColor(1, 2, 3, 77));
    EXPECT_EQ(picked.count(), 0);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(state.color().alpha(), 255);
    state.setColor(QColor());
    EXPECT_EQ(state.color(), QColor(1, 2, 3));
}

TEST(ColorState, hexIsTakenInEachForm) {
    for (const char* form : {"#3D99FF", "3d99ff", " #3d99Ff ", "3D99FF"}) {
        ColorState state;
        QSignalSpy picked(&state, &ColorState::picked);
        EXPECT_TRUE(state.pickHex(hex(form))) << form;
        EXPECT_EQ(state.color(), QColor(0x3d, 0x99, 0xff));
        EXPECT_EQ(state.hexText(), hex("#3D99FF"));
        EXPECT_EQ(picked.count(), 1);
    }
    ColorState state;
    EXPECT_TRUE(state.pickHex(hex("f0a")));
    EXPECT_EQ(state.color(), QColor(0xff, 0x00, 0xaa));
}

TEST(ColorState, whatIsNoHexColourChangesNothing) {
    ColorState state;
    QSignalSpy changed(&state, &ColorState::colorChanged);
    for (const char* wrong :
         {"", "#", "12", "1234", "12345", "1234567", "#12345678", "ggg", "red", "##123", "# 123"})
        EXPECT_FALSE(state.pickHex(hex(wrong))) << wrong;
    EXPECT_EQ(changed.count(), 0);
}

TEST(ColorState, whileItIsTypedAColourIsTakenOnceItIsWhole) {
    ColorState state;
    for (const char* begun : {"", "#", "3", "3d9", "3d99", "3d99f"})
        EXPECT_TRUE(state.typeHex(hex(begun))) << begun;
    EXPECT_EQ(state.color(), QColor(Qt::white));
    EXPECT_TRUE(state.typeHex(hex("3d99ff")));
    EXPECT_EQ(state.color(), QColor(0x3d, 0x99, 0xff));
    EXPECT_FALSE(state.typeHex(hex("3d99ffa")));
    EXPECT_FALSE(state.typeHex(hex("3x")));
}

TEST(ColorState, saysItsColourInWords) {
    ColorState state;
    state.setColor(QColor(51, 102, 255));
    EXPECT_EQ(state.description(), QStringLiteral("Hue 225°, saturation 80%, brightness 100%"));
}

TEST(ColorConversion, everyColourAPersonCanPickIsExactBothWays) {
    for (int level = 0; level < 256; ++level) {
        const Color color = fromQColor(QColor(level, 255 - level, level / 2));
        EXPECT_EQ(color.red, level / 255.0);
        EXPECT_EQ(color.green, (255 - level) / 255.0);
        EXPECT_EQ(toQColor(color), QColor(level, 255 - level, level / 2));
    }
}

TEST(ColorConversion, otherColourModelsBecomeRgb) {
    EXPECT_EQ(fromQColor(QColor::fromHsv(240, 255, 255)), (Color{0.0, 0.0, 1.0, 1.0}));
    EXPECT_EQ(fromQColor(QColor::fromCmyk(255, 0, 0, 0)), (Color{0.0, 1.0, 1.0, 1.0}));
}

TEST(ColorConversion, noColourIsNotANumberAndBeyondTheRangeIsClamped) {
    EXPECT_FALSE(fromQColor(QColor()).inDeviceRgb());
    EXPECT_EQ(toQColor({1.5, -0.5, std::numeric_limits<double>::quiet_NaN(), 1.0}), QColor(255, 0, 0));
}

}  // namespace
}  // namespace korvane
