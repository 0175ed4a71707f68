#include <gtest/gtest.h>

#include <QAccessible>
#include <QTest>

#include "Stage.h"

namespace korvane {

namespace {

constexpr auto everything = R"qml(Item { property int clicks: 0; property int picked: -1
    Column { spacing: 4
        PrimaryPill { objectName: "pill"; text: "Preview"; onClicked: parent.parent.clicks++ }
        GhostPill { objectName: "named"; text: "Load"; name: "Load Video"; enabled: false; onClicked: parent.parent.clicks++ }
        LinkButton { objectName: "link"; text: "All"; onClicked: parent.parent.clicks++ }
        ToggleSwitch { objectName: "switch"; name: "Shadow"; onToggled: parent.parent.clicks++ }
        AccentSlider { objectName: "slider"; name: "Size"; from: 36; to: 120; stepSize: 2; value: 72; valueText: "72pt" }
        VerticalSlider { objectName: "vertical"; name: "Position"; value: 0.5 }
        MenuPicker { objectName: "picker"; name: "Weight"; model: ["Bold", "Light"]; currentIndex: 1 }
        ProgressBar { objectName: "bar"; name: "Transcribing"; fraction: 0.4 }
        CardTitle { objectName: "title"; text: "Subtitles" }
    } })qml";

class Readable : public Stage {
  public:
    Readable() : Stage(everything, QSize(300, 340)) {}

    QAccessibleInterface& of(const char* name) { return *QAccessible::queryAccessibleInterface(&item(name)); }
    std::string name(const char* object) { return of(object).text(QAccessible::Name).toStdString(); }
    void act(const char* object, const QString& action) { of(object).actionInterface()->doAction(action); }
    int clicks() { return root().property("clicks").toInt(); }
};

}  // namespace

TEST(Accessibility, everyControlHasRoleAndName) {
    QAccessible::setActive(true);
    Readable stage;
    const struct {
        const char* object;
        QAccessible::Role role;
        const char* name;
    } wanted[] = {
        {"pill", QAccessible::Button, "Preview"},    {"named", QAccessible::Button, "Load Video"},
        {"link", QAccessible::Button, "All"},        {"switch", QAccessible::CheckBox, "Shadow"},
        {"slider", QAccessible::Slider, "Size"},     {"vertical", QAccessible::Slider, "Position"},
        {"picker", QAccessible::ComboBox, "Weight"}, {"bar", QAccessible::ProgressBar, "Transcribing"},
        {"title", QAccessible::Heading, "Subtitles"}};
    for (const auto& [object, role, name] : wanted) {
        EXPECT_EQ(stage.of(object).role(), role) << object;
        EXPECT_EQ(stage.name(object), name);
    }
    EXPECT_EQ(stage.of("picker").text(QAccessible::Description).toStdString(), "Light");
    EXPECT_EQ(stage.of("slider").text(QAccessible::Description).toStdString(), "72pt");
}

TEST(Accessibility, pressActsUnlessDisabled) {
    QAccessible::setActive(true);
    Readable stage;
    stage.act("pill", QAccessibleActionInterface::pressAction());
    stage.act("link", QAccessibleActionInterface::pressAction());
    EXPECT_EQ(stage.clicks(), 2);
    stage.act("named", QAccessibleActionInterface::pressAction());
    EXPECT_EQ(stage.clicks(), 2);
}

TEST(Accessibility, theSwitchTellsItsStateAndTurnsOncePerPress) {
    QAccessible::setActive(true);
    Readable stage;
    EXPECT_TRUE(stage.of("switch").state().checkable);
    EXPECT_FALSE(stage.of("switch").state().checked);
    stage.act("switch", QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(stage.of("switch").state().checked);
    EXPECT_EQ(stage.clicks(), 1);
    stage.act("switch", QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(stage.of("switch").state().checked);
    EXPECT_EQ(stage.clicks(), 2);
}

TEST(Accessibility, slidersTellTheirRangeAndMoveByTheirStep) {
    QAccessible::setActive(true);
    Readable stage;
    QAccessibleValueInterface* value = stage.of("slider").valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toReal(), 36);
    EXPECT_EQ(value->maximumValue().toReal(), 120);
    EXPECT_EQ(value->minimumStepSize().toReal(), 2);
    EXPECT_EQ(value->currentValue().toReal(), 72);
    stage.act("slider", QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(value->currentValue().toReal(), 74);
    stage.act("vertical", QAccessibleActionInterface::decreaseAction());
    EXPECT_NEAR(stage.of("vertical").valueInterface()->currentValue().toReal(), 0.49, 1e-12);
}

TEST(Accessibility, pressOpensThePicker) {
    QAccessible::setActive(true);
    Readable stage;
    stage.act("picker", QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(Stage::wait([&] { return stage.item("picker").property("opened").toBool(); }));
}

TEST(ToggleSwitch, clickAndSpaceTurnItAndItsBindingStays) {
    Stage stage(R"qml(Item { property bool model: true
        ToggleSwitch { objectName: "switch"; x: 20; y: 20; checked: parent.model; onToggled: parent.model = checked } })qml");
    QQuickItem& control = stage.item("switch");
    stage.click(QPoint(38, 30));
    EXPECT_FALSE(stage.root().property("model").toBool());
    control.forceActiveFocus(Qt::TabFocusReason);
    stage.key(Qt::Key_Space);
    EXPECT_TRUE(stage.root().property("model").toBool());
    stage.root().setProperty("model", false);
    EXPECT_FALSE(control.property("checked").toBool());
}

TEST(ToggleSwitch, returnAndEnterTurnItOnceEach) {
    Stage stage(R"qml(Item { property int turns: 0
        ToggleSwitch { objectName: "switch"; x: 20; y: 20; onToggled: parent.turns++ } })qml");
    QQuickItem& control = stage.item("switch");
    control.forceActiveFocus(Qt::TabFocusReason);
    stage.key(Qt::Key_Return);
    EXPECT_TRUE(control.property("checked").toBool());
    stage.key(Qt::Key_Enter);
    EXPECT_FALSE(control.property("checked").toBool());
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&stage.view(), &held);
    EXPECT_EQ(stage.root().property("turns").toInt(), 2);
}

TEST(ToolTipBubble, aFileNameIsNoMarkup) {
    Stage stage(R"qml(Item {
        ToolTipBubble { objectName: "markup"; text: "<b>reel</b>.mp4" }
        ToolTipBubble { objectName: "plain"; text: "reel.mp4" } })qml");
    const auto width = [&](const char* tip) {
        return stage.object(tip).property("contentItem").value<QQuickItem*>()->implicitWidth();
    };
    EXPECT_GT(width("markup"), width("plain") * 1.3);
}

TEST(LinkButton, brightensUnderThePointer) {
    Stage stage(
        R"qml(Item { LinkButton { objectName: "link"; x: 40; y: 40; text: "None"; color: Theme.white(0.45); size: 40 } })qml");
    const auto brightest = [&] {
        const QImage picture = stage.picture();
        int level = 0;
        for (int x = 40; x < 140; ++x) {
            level = std::max(level, picture.pixelColor(x, 68).red());
        }
        return level;
    };
    EXPECT_NEAR(brightest(), 255 * 0.45, 3);
    QTest::mouseMove(&stage.view(), QPoint(60, 60));
    EXPECT_TRUE(Stage::wait([&] { return brightest() > 255 * 0.6; }));
}

TEST(ProgressBar, fillsAsFarAsItIsTold) {
    Stage stage(
        R"qml(Item { ProgressBar { objectName: "bar"; x: 0; y: 10; width: 300; fillWidth: 150 } })qml");
    const QImage picture = stage.picture();
    EXPECT_GT(picture.pixelColor(140, 13).blue(), 200);
    EXPECT_LT(picture.pixelColor(160, 13).blue(), 40);
    stage.item("bar").setProperty("fillWidth", 0);
    EXPECT_LT(stage.picture().pixelColor(4, 13).blue(), 40);
    stage.item("bar").setProperty("fillWidth", 900);
    EXPECT_GT(stage.picture().pixelColor(296, 13).blue(), 200);
}

}  // namespace korvane
