// Every control of the card, by mouse and by keyboard, changes its own field and nothing else.
#include <QAccessible>
#include <cmath>

#include "CardWindow.h"

namespace korvane {
namespace {

class SubtitlesCard : public ::testing::Test {
  protected:
    EditedStyle style;
    CardWindow card{style};
    SubtitleSettings expected;

    void SetUp() override { style.readFonts(); }

    /// Presses a slider at its beginning and pulls it to its end in small steps.
    void pull(const char* name, bool upright, const std::function<void()>& atEachStep) {
        const auto* slider = card.find(name);
        const QPointF from = slider->mapToScene(upright ? QPointF(slider->width() / 2, slider->height() - 1)
                                                        : QPointF(1, slider->height() / 2));
        const QPointF way = upright ? QPointF(0, 2 - slider->height()) : QPointF(slider->width() - 2, 0);
        QTest::mousePress(&card.window, Qt::LeftButton, {}, from.toPoint());
        for (int step = 1; step <= 60; ++step) {
            QTest::mouseMove(&card.window, (from + way * step / 60).toPoint());
            atEachStep();
        }
        QTest::mouseRelease(&card.window, Qt::LeftButton, {}, (from + way).toPoint());
    }
    QString labelOf(const char* name) const { return card.find(name)->property("text").toString(); }
};

TEST_F(SubtitlesCard, sizeGoesFrom36To120InEvenStepsAndSaysSo) {
    std::set<double> sizes;
    pull("size", false, [&] {
        sizes.insert(style.settings.fontSize);
        EXPECT_EQ(labelOf("sizeLabel"), QStringLiteral("%1pt").arg(style.settings.fontSize));
        EXPECT_EQ(SubtitleSettings::load(style.store), style.settings) << "each step is saved";
    });
    EXPECT_EQ(*sizes.begin(), 36.0);
    EXPECT_EQ(*sizes.rbegin(), 120.0);
    for (const double size : sizes)
        EXPECT_EQ(std::fmod(size, 2.0), 0.0) << size;
    expected.fontSize = 120;
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(labelOf("sizeLabel"), QStringLiteral("120pt"));
}

TEST_F(SubtitlesCard, blurGoesFrom1To32InWholeStepsAndSaysSo) {
    std::set<double> blurs;
    style.editor.setShadowRadius(1);
    EXPECT_EQ(labelOf("blurLabel"), QStringLiteral("1px"));
    style.editor.setShadowRadius(8);
    pull("blur", false, [&] { blurs.insert(style.settings.shadowRadius); });
    EXPECT_EQ(*blurs.begin(), 1.0);
    EXPECT_EQ(*blurs.rbegin(), 32.0);
    for (const double blur : blurs)
        EXPECT_EQ(blur, std::trunc(blur));
    expected.shadowRadius = 32;
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(labelOf("blurLabel"), QStringLiteral("32px"));
}

TEST_F(SubtitlesCard, positionGoesFrom0To1WithoutBeingTurnedRound) {
    pull("position", true, [] {});
    expected.verticalPosition = style.settings.verticalPosition;
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(style.settings.verticalPosition, 1.0) << "its top";
}

TEST_F(SubtitlesCard, slidersMoveByTheirStepWithTheArrowKeys) {
    card.focus("size");
    card.key(Qt::Key_Right);
    expected.fontSize = 74;
    EXPECT_EQ(style.settings, expected);
    card.focus("blur");
    card.key(Qt::Key_Left);
    expected.shadowRadius = 7;
    EXPECT_EQ(style.settings, expected);
    card.focus("position");
    card.key(Qt::Key_Up);
    EXPECT_NEAR(style.settings.verticalPosition, 0.86, 1e-12);
    expected.verticalPosition = style.settings.verticalPosition;
    EXPECT_EQ(style.settings, expected);
}

TEST_F(SubtitlesCard, aPositionFromOutsideMovesTheSliderButNotADifferenceThatNobodySees) {
    const auto* slider = card.find("position");
    auto other = style.settings;
    other.verticalPosition = 0.25;
    style.set(other);
    EXPECT_EQ(slider->property("value").toDouble(), 0.25);
    other.verticalPosition = 0.25 + 9e-7;
    style.set(other);
    EXPECT_EQ(slider->property("value").toDouble(), 0.25);
    EXPECT_EQ(style.settings.verticalPosition, 0.25 + 9e-7);
    other.verticalPosition = 0.25 + 3e-6;
    style.set(other);
    EXPECT_EQ(slider->property("value").toDouble(), 0.25 + 3e-6);
}

TEST_F(SubtitlesCard, switchesTurnByMouseAndKey) {
    card.click("shadow");
    expected.hasShadow = false;
    EXPECT_EQ(style.settings, expected);
    card.focus("shadow");
    card.key(Qt::Key_Space);
    expected.hasShadow = true;
    EXPECT_EQ(style.settings, expected);
    card.click("bounce");
    expected.hasPopAnimation = false;
    EXPECT_EQ(style.settings, expected);
    card.focus("bounce");
    card.key(Qt::Key_Space);
    expected.hasPopAnimation = true;
    EXPECT_EQ(style.settings, expected);
}

TEST_F(SubtitlesCard, theShadowsWellIsThereWhileTheShadowIsOnAndBlurStaysEnabled) {
    style.editor.setShadowColor(QColor(9, 8, 7));
    EXPECT_TRUE(card.find("shadowColor")->isVisible());
    card.click("shadow");
    EXPECT_FALSE(card.find("shadowColor")->isVisible());
    EXPECT_TRUE(card.find("blur")->isEnabled());
    card.click("shadow");
    EXPECT_TRUE(card.find("shadowColor")->isVisible());
    EXPECT_EQ(card.find("shadowColor")->property("color").value<QColor>(), QColor(9, 8, 7));
}

TEST_F(SubtitlesCard, aWellOpensItsChooserWhichFollowsThePointerAndLeavesWithEscape) {
    for (const char* name : {"color", "shadowColor"}) {
        card.click(name);
        ASSERT_TRUE(QTest::qWaitFor([&] { return card.find(name)->property("opened").toBool(); })) << name;
        auto* field = card.window.activeFocusItem();
        ASSERT_TRUE(QTest::qWaitFor([&] {
            field = card.window.activeFocusItem();
            return field && field->inherits("QQuickItem") && field->property("choice").isValid();
        }));
        const QPointF corner = field->mapToScene({field->width() - 1, 0});
        QTest::mouseClick(&card.window, Qt::LeftButton, {}, corner.toPoint());
        const QColor picked = card.find(name)->property("color").value<QColor>();
        EXPECT_EQ(picked.red(), 255) << "hue 0, as full and bright as can be";
        EXPECT_LT(picked.green(), 6);
        card.key(Qt::Key_Down, Qt::ShiftModifier);
        EXPECT_NEAR(card.find(name)->property("color").value<QColor>().red(), 230, 1);
        card.key(Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !card.find(name)->property("opened").toBool(); }));
        EXPECT_EQ(card.window.activeFocusItem(), card.find(name)) << "the keys are back where they were";
    }
    expected.textColorR = style.settings.textColorR;
    expected.textColorG = style.settings.textColorG;
    expected.textColorB = style.settings.textColorB;
    expected.shadowColorR = style.settings.shadowColorR;
    expected.shadowColorG = style.settings.shadowColorG;
    expected.shadowColorB = style.settings.shadowColorB;
    EXPECT_EQ(style.settings, expected);
}

TEST_F(SubtitlesCard, aColourIsTypedAndAWrongOneIsMarked) {
    card.focus("color");
    card.key(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return card.find("color")->property("opened").toBool(); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return card.window.activeFocusItem() != card.find("color"); }));
    card.key(Qt::Key_Tab);
    card.key(Qt::Key_Tab);
    auto* entry = card.window.activeFocusItem();
    ASSERT_TRUE(entry->property("wrong").isValid()) << "the third stop is the hex entry";
    QTest::keyClick(&card.window, 'z');
    EXPECT_TRUE(entry->property("wrong").toBool());
    EXPECT_EQ(style.settings, expected);
    card.key(Qt::Key_Backspace);
    EXPECT_FALSE(entry->property("wrong").toBool());
    for (const char digit : std::string("3366ff"))
        QTest::keyClick(&card.window, digit);
    EXPECT_EQ(style.editor.textColor(), QColor(0x33, 0x66, 0xff));
    card.key(Qt::Key_Return);
    EXPECT_EQ(entry->property("text").toString(), QStringLiteral("#3366FF"));
}

TEST_F(SubtitlesCard, aWeightIsPickedWithTheKeys) {
    style.editor.chooseFamily(QStringLiteral("Inter"));
    expected = style.settings;
    card.focus("weight");
    card.key(Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return card.find("weight")->property("opened").toBool(); }));
    card.key(Qt::Key_Home);
    card.key(Qt::Key_Return);
    expected.fontPostscriptName = "Inter-Light";
    EXPECT_EQ(style.settings, expected);
    EXPECT_EQ(labelOf("weight"), QStringLiteral("Light"));
}

TEST_F(SubtitlesCard, everyControlHasANameAndARole) {
    const struct {
        const char* control;
        const char* name;
        QAccessible::Role role;
    } rows[] = {{"font", "Font", QAccessible::ComboBox},
                {"weight", "Weight", QAccessible::ComboBox},
                {"size", "Size", QAccessible::Slider},
                {"color", "Color", QAccessible::Button},
                {"shadow", "Shadow", QAccessible::CheckBox},
                {"shadowColor", "Shadow color", QAccessible::Button},
                {"blur", "Blur", QAccessible::Slider},
                {"position", "Vertical position", QAccessible::Slider},
                {"bounce", "Spring bounce on entry", QAccessible::CheckBox}};
    for (const auto& row : rows) {
        auto* heard = QAccessible::queryAccessibleInterface(card.find(row.control));
        ASSERT_NE(heard, nullptr) << row.control;
        EXPECT_EQ(heard->text(QAccessible::Name), QString::fromLatin1(row.name));
        EXPECT_EQ(heard->role(), row.role) << row.control;
    }
}

TEST_F(SubtitlesCard, theControlsHaveTheirWidths) {
    const struct {
        const char* control;
        double width;
    } rows[] = {{"weight", 90},      {"size", 88}, {"sizeLabel", 32}, {"color", 46},
                {"shadowColor", 46}, {"blur", 70}, {"blurLabel", 30}, {"position", 20}};
    for (const auto& row : rows)
        EXPECT_EQ(card.find(row.control)->width(), row.width) << row.control;
}

TEST_F(SubtitlesCard, tabGoesThroughTheControlsInTheirOrder) {
    style.editor.chooseFamily(QStringLiteral("Inter"));
    card.focus("font");
    for (const char* next :
         {"weight", "size", "color", "shadow", "shadowColor", "blur", "position", "bounce"}) {
        card.key(Qt::Key_Tab);
        EXPECT_EQ(card.window.activeFocusItem(), card.find(next)) << next;
    }
}

}  // namespace
}  // namespace korvane
