// The chooser from the inside: where its knobs stand, what is heard, where the keys are and where that shows.
#include <QAccessible>
#include <QWheelEvent>

#include "CardWindow.h"

namespace korvane {
namespace {

class ColorChooser : public ::testing::Test {
  protected:
    EditedStyle style;
    CardWindow card{style};

    void SetUp() override { style.editor.setTextColor(QColor(255, 0, 0)); }
    QQuickItem* well() const { return card.find("color"); }
    bool isOpen() const { return well()->property("opened").toBool(); }
    QQuickItem* keys() const { return card.window.activeFocusItem(); }
    bool shows(const QQuickItem* item) const { return item->property("visualFocus").toBool(); }

    /// \return the field, which has the keys.
    QQuickItem* openByKeys() {
        card.focus("color");
        card.key(Qt::Key_Space);
        return opened();
    }
    QQuickItem* openByPointer() {
        card.click("color");
        return opened();
    }
    QQuickItem* strip() {
        card.key(Qt::Key_Tab);
        return keys();
    }
    QQuickItem* entry() {
        card.key(Qt::Key_Tab);
        card.key(Qt::Key_Tab);
        return keys();
    }
    void type(const std::string& text) {
        for (const char letter : text)
            QTest::keyClick(&card.window, letter);
    }
    void leave() {
        card.key(Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !isOpen() && keys() == well(); }));
    }
    static QAccessibleInterface& heard(QQuickItem* item) {
        return *QAccessible::queryAccessibleInterface(item);
    }

  private:
    QQuickItem* opened() {
        EXPECT_TRUE(QTest::qWaitFor([&] { return isOpen() && keys() && keys() != well(); }));
        return keys();
    }
};

TEST_F(ColorChooser, openedByKeysShowsWhereTheyAreInsideAndAfter) {
    const auto* field = openByKeys();
    EXPECT_TRUE(shows(field));
    leave();
    EXPECT_TRUE(shows(well()));
}

TEST_F(ColorChooser, openedByThePointerShowsNoRingUntilKeysAreUsed) {
    auto* field = openByPointer();
    EXPECT_FALSE(shows(field));
    card.key(Qt::Key_Down);
    EXPECT_TRUE(shows(field));
    QTest::mouseClick(&card.window, Qt::LeftButton, {}, card.centre(field));
    EXPECT_FALSE(shows(field));
    leave();
    EXPECT_FALSE(shows(well()));
}

TEST_F(ColorChooser, theHueIsThatUnderThePointerAndTheKnobIsThere) {
    openByPointer();
    auto* hue = strip();
    const auto* knob = hue->findChild<QQuickItem*>(QStringLiteral("hueKnob"));
    ASSERT_NE(knob, nullptr);
    for (const double part : {0.1, 0.5, 0.93}) {
        const QPoint pointer =
            hue->mapToScene({std::round(part * hue->width()), hue->height() / 2}).toPoint();
        QTest::mouseClick(&card.window, Qt::LeftButton, {}, pointer);
        EXPECT_NEAR(hue->property("value").toDouble(), 360 * part, 1.0);
        EXPECT_NEAR(knob->mapToScene({knob->width() / 2, 0}).x(), pointer.x(), 0.6) << part;
    }
}

TEST_F(ColorChooser, theWholeStripIsRedToRed) {
    openByPointer();
    auto* hue = strip();
    QTest::mousePress(&card.window, Qt::LeftButton, {}, hue->mapToScene({90, 5}).toPoint());
    QTest::mouseMove(&card.window, hue->mapToScene({-30, 5}).toPoint());
    EXPECT_EQ(hue->property("value").toDouble(), 0);
    QTest::mouseMove(&card.window, hue->mapToScene({hue->width() + 30, 5}).toPoint());
    EXPECT_EQ(hue->property("value").toDouble(), 360);
    EXPECT_EQ(style.editor.textColor(), QColor(255, 0, 0));
    QTest::mouseRelease(&card.window, Qt::LeftButton, {}, hue->mapToScene({90, 5}).toPoint());
    // A little beside the strip, where the knob is still seen.
    QTest::mouseClick(&card.window, Qt::LeftButton, {}, hue->mapToScene({108, -2}).toPoint());
    EXPECT_NEAR(hue->property("value").toDouble(), 180, 1);
}

TEST_F(ColorChooser, keysAndTheWheelTurnTheHue) {
    openByKeys();
    auto* hue = strip();
    ASSERT_TRUE(hue->property("value").isValid());
    EXPECT_TRUE(shows(hue));
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        double degrees;
    } rows[] = {{Qt::Key_End, {}, 360},   {Qt::Key_Home, {}, 0},
                {Qt::Key_Right, {}, 2},   {Qt::Key_Up, Qt::ShiftModifier, 22},
                {Qt::Key_PageUp, {}, 42}, {Qt::Key_Left, Qt::ShiftModifier, 22},
                {Qt::Key_Down, {}, 20},   {Qt::Key_PageDown, {}, 0}};
    for (const auto& row : rows) {
        card.key(row.key, row.modifiers);
        EXPECT_NEAR(hue->property("value").toDouble(), row.degrees, 1e-9) << row.key;
    }
    const QPointF middle = card.centre(hue);
    QWheelEvent up(middle, card.window.mapToGlobal(middle), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&card.window, &up);
    EXPECT_NEAR(hue->property("value").toDouble(), 2, 1e-9);
}

TEST_F(ColorChooser, isOneDialogOfTheWellsNameWithNamedPartsInIt) {
    auto* field = openByKeys();
    int dialogs = 0;
    for (auto* item = field->parentItem(); item; item = item->parentItem()) {
        auto* spoken = QAccessible::queryAccessibleInterface(item);
        if (!spoken || spoken->role() != QAccessible::Dialog)
            continue;
        EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Color"));
        ++dialogs;
    }
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(heard(field).role(), QAccessible::ColorChooser);
    EXPECT_EQ(heard(field).text(QAccessible::Name), QStringLiteral("Saturation and brightness"));
    EXPECT_EQ(heard(field).text(QAccessible::Description),
              QStringLiteral("Hue 0°, saturation 100%, brightness 100%"));
    auto* hue = strip();
    EXPECT_EQ(heard(hue).role(), QAccessible::Slider);
    EXPECT_EQ(heard(hue).text(QAccessible::Name), QStringLiteral("Hue"));
    auto* value = heard(hue).valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 360);
    EXPECT_EQ(value->currentValue().toDouble(), 0);
    heard(hue).actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_NEAR(value->currentValue().toDouble(), 2, 1e-9);
    card.key(Qt::Key_Tab);
    EXPECT_EQ(heard(keys()).text(QAccessible::Name), QStringLiteral("Hex color"));
}

TEST_F(ColorChooser, threeDigitsAreTakenByReturnAndTabButNotByEscape) {
    openByKeys();
    entry();
    type("0f0");
    leave();
    EXPECT_EQ(style.editor.textColor(), QColor(255, 0, 0));

    openByKeys();
    EXPECT_EQ(entry()->property("text").toString(), QStringLiteral("#FF0000"));
    type("0f0");
    card.key(Qt::Key_Tab);
    EXPECT_EQ(style.editor.textColor(), QColor(0, 255, 0));
    leave();

    openByKeys();
    entry();
    type("00f");
    EXPECT_EQ(style.editor.textColor(), QColor(0, 255, 0));
    card.key(Qt::Key_Return);
    EXPECT_EQ(style.editor.textColor(), QColor(0, 0, 255));
    type("f00");
    card.key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(style.editor.textColor(), QColor(255, 0, 0));
}

}  // namespace
}  // namespace korvane
