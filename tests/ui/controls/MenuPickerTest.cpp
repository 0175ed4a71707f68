#include <gtest/gtest.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QTest>
#include <stdexcept>
#include <string>
#include <utility>

#include "MenuChoices.h"
#include "Stage.h"

namespace korvane {

namespace {

constexpr auto languages = R"qml(Item { property int model: 1; property var picks: []
    MenuPicker { objectName: "picker"; x: 20; y: 20; name: "Language"; currentIndex: parent.model
        model: ["English (US)", "German (Germany)", "French", "Greek", "Polish"]
        onPicked: index => { parent.picks = parent.picks.concat(index); parent.model = index } } })qml";

class Picker : public Stage {
  public:
    explicit Picker(const QByteArray& qml = languages, const QSize& size = QSize(300, 240))
        : Stage(qml, size) {}

    QQuickItem& control() { return item("picker"); }
    bool isOpen() { return control().property("opened").toBool(); }
    QString text() { return control().property("text").toString(); }
    QVariantList picks() { return root().property("picks").toList(); }
    QPoint middle() {
        return control().mapToScene(QPointF(control().width() / 2, control().height() / 2)).toPoint();
    }
    void focus() { control().forceActiveFocus(Qt::TabFocusReason); }
    QQuickItem* row(const QString& label) { return find(view().contentItem(), label); }
    QQuickItem* row(const char* label) { return row(QString::fromUtf8(label)); }
    static QQuickItem& words(QQuickItem& row) { return part(row, "truncated"); }
    static bool isUnderThePointer(QQuickItem& row) {
        return part(row, "containsMouse").property("containsMouse").toBool();
    }
    /// Until the row that lies where the pointer rests knows it, as the scene tells when anything in it
    /// moves.
    bool pointerIsHeeded() {
        return wait([&] {
            root().setRotation(root().rotation() == 0 ? 360 : 0);
            QQuickItem* row = rowAt(view().contentItem(), middle());
            return row != nullptr && isUnderThePointer(*row);
        });
    }
    void open() {
        // From elsewhere, as a pointer that is there already would not have moved.
        QTest::mouseMove(&view(), QPoint(1, 1));
        QTest::mouseMove(&view(), middle());
        click(middle());
        ASSERT_TRUE(wait([this] { return isOpen() && row(QStringLiteral("French")) != nullptr; }));
    }

  private:
    static QQuickItem* rowAt(QQuickItem* from, const QPointF& place) {
        if (from->property("modelData").isValid() && from->isVisible() &&
            from->contains(from->mapFromScene(place))) {
            return from;
        }
        for (QQuickItem* child : from->childItems()) {
            if (QQuickItem* below = rowAt(child, place)) {
                return below;
            }
        }
        return nullptr;
    }
    static QQuickItem& part(QQuickItem& row, const char* property) {
        for (QQuickItem* child : row.childItems()) {
            if (child->property(property).isValid()) {
                return *child;
            }
        }
        throw std::runtime_error("a row has no such part");
    }
    static QQuickItem* find(QQuickItem* from, const QString& label) {
        for (QQuickItem* child : from->childItems()) {
            if (child->property("modelData").toString() == label) {
                return child;
            }
            if (QQuickItem* below = find(child, label)) {
                return below;
            }
        }
        return nullptr;
    }
};

}  // namespace

TEST(MenuPicker, showsTheChosenLabelAndFitsTheWidest) {
    Picker picker;
    EXPECT_EQ(picker.text(), QStringLiteral("German (Germany)"));
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    const qreal widest = QFontMetricsF(font).horizontalAdvance(QStringLiteral("German (Germany)"));
    EXPECT_GE(picker.control().width() - 9 - 7 - 17, widest);
    EXPECT_LT(picker.control().width() - 9 - 7 - 20, widest);
}

TEST(MenuPicker, clickingALabelPicksIt) {
    Picker picker;
    picker.open();
    QQuickItem* french = picker.row(QStringLiteral("French"));
    picker.click(french->mapToScene(QPointF(30, 10)).toPoint());
    EXPECT_EQ(picker.picks(), QVariantList{2});
    EXPECT_EQ(picker.text(), QStringLiteral("French"));
    EXPECT_TRUE(Stage::wait([&] { return !picker.isOpen(); }));
}

TEST(MenuPicker, pickingTheChosenOneSaysNothing) {
    Picker picker;
    picker.open();
    picker.click(picker.row(QStringLiteral("German (Germany)"))->mapToScene(QPointF(30, 10)).toPoint());
    EXPECT_TRUE(picker.picks().isEmpty());
    EXPECT_TRUE(Stage::wait([&] { return !picker.isOpen(); }));
}

TEST(MenuPicker, keysOpenItMoveInItAndPick) {
    Picker picker;
    picker.focus();
    picker.key(Qt::Key_Down);
    ASSERT_TRUE(Stage::wait([&] { return picker.isOpen(); }));
    picker.key(Qt::Key_Down);
    picker.key(Qt::Key_Down);
    EXPECT_TRUE(picker.picks().isEmpty());
    picker.key(Qt::Key_Return);
    EXPECT_EQ(picker.picks(), QVariantList{3});
    ASSERT_TRUE(Stage::wait([&] { return !picker.isOpen() && picker.control().hasActiveFocus(); }));

    picker.key(Qt::Key_Space);
    ASSERT_TRUE(Stage::wait([&] { return picker.isOpen(); }));
    picker.key(Qt::Key_Home);
    picker.key(Qt::Key_Enter);
    EXPECT_EQ(picker.picks(), (QVariantList{3, 0}));
    ASSERT_TRUE(Stage::wait([&] { return !picker.isOpen(); }));
}

TEST(MenuPicker, escapeLeavesEverythingAsItWas) {
    Picker picker;
    picker.focus();
    picker.key(Qt::Key_Return);
    ASSERT_TRUE(Stage::wait([&] { return picker.isOpen(); }));
    picker.key(Qt::Key_End);
    picker.key(Qt::Key_Escape);
    ASSERT_TRUE(Stage::wait([&] { return !picker.isOpen(); }));
    EXPECT_TRUE(picker.control().property("visualFocus").toBool());
    EXPECT_TRUE(picker.picks().isEmpty());
    EXPECT_EQ(picker.text(), QStringLiteral("German (Germany)"));
}

TEST(MenuPicker, lettersGoToTheLabelThatBeginsSo) {
    Picker picker;
    picker.focus();
    picker.key(Qt::Key_Return);
    ASSERT_TRUE(Stage::wait([&] { return picker.isOpen(); }));
    picker.type("po");
    picker.key(Qt::Key_Return);
    EXPECT_EQ(picker.picks(), QVariantList{4});
}

TEST(MenuPicker, lettersPickWhileItIsClosed) {
    Picker picker;
    picker.focus();
    picker.type("f");
    EXPECT_EQ(picker.picks(), QVariantList{2});
    EXPECT_FALSE(picker.isOpen());
}

TEST(MenuPicker, aRefusedPickChangesNothing) {
    Picker picker(
        R"qml(Item { MenuPicker { objectName: "picker"; model: ["One", "Two"]; currentIndex: 0 } })qml");
    picker.focus();
    picker.type("t");
    EXPECT_EQ(picker.text(), QStringLiteral("One"));
}

TEST(MenuPicker, itsListStaysInTheWindowAndShowsItsLabelsWhole) {
    Picker picker(R"qml(Item { MenuPicker { objectName: "picker"; width: 90
        anchors.right: parent.right; anchors.bottom: parent.bottom; currentIndex: 0
        model: ["Thin", "Condensed Extra Bold Italic", "French"] } })qml",
                  QSize(300, 200));
    picker.open();
    QQuickItem* row = picker.row(QStringLiteral("Condensed Extra Bold Italic"));
    ASSERT_NE(row, nullptr);
    ASSERT_TRUE(Stage::wait([&] { return row->width() > 150; }));
    const QRectF bounds = row->mapRectToScene(row->boundingRect());
    EXPECT_TRUE(QRectF(0, 0, 300, 200).contains(bounds));
    EXPECT_FALSE(Picker::words(*row).property("truncated").toBool());
}

TEST(MenuPicker, disabledOrEmptyDoesNotOpen) {
    Picker picker;
    picker.control().setEnabled(false);
    picker.click(picker.middle());
    EXPECT_FALSE(picker.isOpen());
    Picker empty(R"qml(Item { MenuPicker { objectName: "picker"; width: 90 } })qml");
    empty.click(empty.middle());
    EXPECT_FALSE(empty.isOpen());
}

namespace {

// At the window's edge the list comes up over the picker, and so under the pointer that pressed it.
constexpr auto atTheEdge = R"qml(Item { property var picks: []
    MenuPicker { objectName: "picker"; x: 20; y: 165; width: 120; currentIndex: 1
        model: ["English (US)", "German (Germany)", "French", "Greek", "Polish"]
        onPicked: index => { parent.picks = parent.picks.concat(index) } } })qml";

// More than fit, so that keys scroll them.
constexpr auto manyAtTheEdge = R"qml(Item { property var picks: []
    MenuPicker { objectName: "picker"; x: 20; y: 385; width: 120; currentIndex: 20
        model: Array.from({ length: 40 }, (_, i) => i === 21 ? "French" : "Row " + i)
        onPicked: index => { parent.picks = parent.picks.concat(index) } } })qml";

}  // namespace

TEST(MenuPicker, aPointerThatRestsWhereTheListOpensPicksNothing) {
    Picker picker(atTheEdge, QSize(300, 200));
    picker.open();
    QQuickItem* polish = picker.row("Polish");
    ASSERT_TRUE(picker.pointerIsHeeded());
    EXPECT_TRUE(picker.row("German (Germany)")->property("current").toBool());
    EXPECT_FALSE(polish->property("current").toBool());
    picker.key(Qt::Key_Return);
    EXPECT_TRUE(picker.picks().isEmpty());
}

TEST(MenuPicker, aPointerThatMovesTakesTheKeysPlace) {
    Picker picker(atTheEdge, QSize(300, 200));
    picker.open();
    QQuickItem* polish = picker.row("Polish");
    ASSERT_TRUE(picker.pointerIsHeeded());
    QTest::mouseMove(&picker.view(), picker.middle() + QPoint(2, 0));
    EXPECT_TRUE(Stage::wait([&] { return polish->property("current").toBool(); }));
    QTest::mouseMove(&picker.view(), picker.row("French")->mapToScene(QPointF(40, 13)).toPoint());
    EXPECT_TRUE(Stage::wait([&] { return picker.row("French")->property("current").toBool(); }));
    picker.key(Qt::Key_Return);
    EXPECT_EQ(picker.picks(), QVariantList{2});
}

TEST(MenuPicker, keysThatScrollTheListUnderARestingPointerKeepTheirPlace) {
    Picker picker(manyAtTheEdge, QSize(300, 420));
    picker.open();
    for (const auto& [key, label] : {std::pair(Qt::Key_End, "Row 39"), std::pair(Qt::Key_PageUp, "Row 27"),
                                     std::pair(Qt::Key_Home, "Row 0")}) {
        picker.key(key);
        ASSERT_TRUE(Stage::wait([&] {
            const QQuickItem* row = picker.row(label);
            return row != nullptr &&
                   QRectF(0, 0, 300, 420).contains(row->mapRectToScene(row->boundingRect()));
        })) << label;
        ASSERT_TRUE(picker.pointerIsHeeded());
        EXPECT_TRUE(picker.row(label)->property("current").toBool()) << label;
    }
    picker.key(Qt::Key_Return);
    EXPECT_EQ(picker.picks(), QVariantList{0});
}

TEST(MenuPicker, whatIsChosenAndWhereTheKeysAreIsHeard) {
    QAccessible::setActive(true);
    Picker picker;
    picker.focus();
    picker.key(Qt::Key_Return);
    ASSERT_TRUE(Stage::wait([&] { return picker.isOpen() && picker.row("French") != nullptr; }));
    picker.key(Qt::Key_Down);
    const auto heard = [&](const char* label) -> QAccessibleInterface& {
        return *QAccessible::queryAccessibleInterface(picker.row(label));
    };
    for (const char* label : {"English (US)", "German (Germany)", "French"}) {
        const QAccessible::State state = heard(label).state();
        EXPECT_EQ(heard(label).role(), QAccessible::ListItem) << label;
        EXPECT_EQ(heard(label).text(QAccessible::Name).toStdString(), label);
        EXPECT_TRUE(state.checkable) << label;
        EXPECT_EQ(bool(state.checked), label == std::string("German (Germany)")) << label;
        EXPECT_EQ(bool(state.selected), label == std::string("French")) << label;
        EXPECT_EQ(bool(state.focused), label == std::string("French")) << label;
    }
}

TEST(MenuPicker, aLabelIsNoMarkup) {
    Picker picker(R"qml(Item { MenuPicker { objectName: "picker"; width: 90; currentIndex: 0
        model: ["<b>French</b>", "French"] } })qml");
    picker.open();
    EXPECT_GT(Picker::words(*picker.row("<b>French</b>")).implicitWidth(),
              Picker::words(*picker.row("French")).implicitWidth() * 1.5);
}

TEST(MenuChoices, theSameLetterGoesOnToTheNext) {
    MenuChoices choices;
    choices.setLabels(
        {QStringLiteral("Golf"), QStringLiteral("Alpha"), QStringLiteral("gamma"), QStringLiteral("Grid")});
    EXPECT_EQ(choices.typed(QStringLiteral("g"), 0), 2);
    EXPECT_EQ(choices.typed(QStringLiteral("g"), 2), 3);
    EXPECT_EQ(choices.typed(QStringLiteral("g"), 3), 0);
}

TEST(MenuChoices, lettersTypedTogetherAreAPrefix) {
    MenuChoices choices;
    choices.setLabels({QStringLiteral("Bold"), QStringLiteral("Black"), QStringLiteral("Book")});
    EXPECT_EQ(choices.typed(QStringLiteral("b"), -1), 0);
    EXPECT_EQ(choices.typed(QStringLiteral("l"), 0), 1);
    EXPECT_EQ(choices.typed(QStringLiteral("x"), 1), -1);
}

TEST(MenuChoices, aFlagBeforeTheNameIsPassedOver) {
    MenuChoices choices;
    choices.setLabels({QStringLiteral("🇺🇸  English"), QStringLiteral("🇩🇪  German")});
    EXPECT_EQ(choices.typed(QStringLiteral("g"), 0), 1);
}

TEST(MenuChoices, controlKeysAreNotLetters) {
    MenuChoices choices;
    choices.setLabels({QStringLiteral("Bold")});
    EXPECT_EQ(choices.typed(QString(QChar(0x1b)), 0), -1);
    EXPECT_EQ(choices.typed(QString(), 0), -1);
}

}  // namespace korvane
