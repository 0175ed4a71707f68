#include <QAccessible>

#include "ShownCard.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

class ModelRow : public testing::Test {
  protected:
    ShownCard shown_{"ModelRow",
                     {{QStringLiteral("modelId"), QStringLiteral("base")},
                      {QStringLiteral("name"), QStringLiteral("Whisper base")},
                      {QStringLiteral("detail"), QStringLiteral("82 MB")},
                      {QStringLiteral("progressText"), QString()},
                      {QStringLiteral("fraction"), 0.0},
                      {QStringLiteral("actionText"), QStringLiteral("Install")},
                      {QStringLiteral("actionName"), QStringLiteral("Install Whisper base")},
                      {QStringLiteral("removalText"), QStringLiteral("It can be installed again.")},
                      {QStringLiteral("secondText"), QString()},
                      {QStringLiteral("secondName"), QString()},
                      {QStringLiteral("recommended"), false},
                      {QStringLiteral("installed"), false},
                      {QStringLiteral("inUse"), false},
                      {QStringLiteral("downloading"), false},
                      {QStringLiteral("stopped"), false},
                      {QStringLiteral("faulty"), false},
                      {QStringLiteral("removes"), false},
                      {QStringLiteral("hasRadios"), false},
                      {QStringLiteral("isFirst"), true}}};
    QQuickItem& action_ = shown_.named("act base");
    QSignalSpy acted_{shown_.card.get(), SIGNAL(acted())};
    QSignalSpy removed_{shown_.card.get(), SIGNAL(removed())};

    void install() {
        shown_.set("installed", true);
        shown_.set("hasRadios", true);
        shown_.set("actionText", QStringLiteral("Remove"));
        shown_.set("removes", true);
    }
    void download() {
        shown_.set("downloading", true);
        shown_.set("fraction", 0.25);
        shown_.set("progressText", QStringLiteral("25%"));
        shown_.set("actionText", QStringLiteral("Stop"));
    }
};

TEST_F(ModelRow, saysWhatItIsAndOffersToInstallIt) {
    EXPECT_TRUE(shown_.saying("Whisper base").isVisible());
    EXPECT_TRUE(shown_.saying("82 MB").isVisible());
    EXPECT_FALSE(shown_.saying("Recommended").isVisible());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&action_)->text(QAccessible::Name),
              QStringLiteral("Install Whisper base"));
    shown_.click(action_);
    EXPECT_EQ(acted_.size(), 1);
}

TEST_F(ModelRow, onlyTheRecommendedOneStandsOut) {
    EXPECT_EQ(action_.property("fillFrom").value<QColor>(), Theme::white(0.11));
    shown_.set("recommended", true);
    EXPECT_TRUE(shown_.saying("Recommended").isVisible());
    EXPECT_EQ(action_.property("fillFrom").value<QColor>(), Theme::accent());
}

TEST_F(ModelRow, aDownloadTakesThePlaceOfTheDetails) {
    const double height = shown_.card->height();
    download();
    EXPECT_FALSE(shown_.named("detail").isVisible());
    EXPECT_TRUE(shown_.saying("25%").isVisible());
    const QQuickItem& bar = shown_.named("modelProgress");
    EXPECT_EQ(bar.property("fillWidth").toDouble(), bar.width() / 4);
    EXPECT_EQ(shown_.card->height(), height);
    shown_.click(action_);
    EXPECT_EQ(acted_.size(), 1);
}

TEST_F(ModelRow, whatWasStoppedCanBeDiscarded) {
    QSignalSpy discarded(shown_.card.get(), SIGNAL(discarded()));
    EXPECT_FALSE(shown_.named("second base").isVisible());
    shown_.set("stopped", true);
    shown_.set("secondText", QStringLiteral("Discard"));
    shown_.click(shown_.named("second base"));
    EXPECT_EQ(discarded.size(), 1);
}

TEST_F(ModelRow, oneThatCanNotBeUsedSaysWhyAndIsGotAgainOrRemoved) {
    const double height = shown_.card->height();
    shown_.set("faulty", true);
    shown_.set("detail", QStringLiteral("\"ggml-base-q8_0.bin\" is cut off: it isn't all of a model."));
    shown_.set("actionText", QStringLiteral("Install again"));
    shown_.set("secondText", QStringLiteral("Remove"));
    shown_.set("secondName", QStringLiteral("Remove the file of Whisper base"));
    shown_.set("removes", true);
    EXPECT_EQ(shown_.card->height(), height);
    EXPECT_FALSE(shown_.named("detail").property("truncated").toBool());
    shown_.click(action_);
    EXPECT_EQ(acted_.size(), 1);
    QQuickItem& second = shown_.named("second base");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&second)->text(QAccessible::Name),
              QStringLiteral("Remove the file of Whisper base"));
    shown_.focus(second);
    shown_.key(Qt::Key_Space);
    EXPECT_TRUE(shown_.saying("Remove Whisper base?").isVisible());
    ASSERT_TRUE(shown_.named("keep base").hasActiveFocus());
    shown_.key(Qt::Key_Escape);
    EXPECT_TRUE(second.hasActiveFocus()) << "the keyboard goes back to where it was";
    shown_.key(Qt::Key_Space);
    shown_.click(shown_.named("remove base"));
    EXPECT_EQ(removed_.size(), 1);
    EXPECT_EQ(acted_.size(), 1);
}

TEST_F(ModelRow, removingAsksOnceAndEscapeKeeps) {
    install();
    shown_.focus(action_);
    shown_.key(Qt::Key_Space);
    EXPECT_TRUE(shown_.saying("Remove Whisper base?").isVisible());
    EXPECT_TRUE(shown_.saying("It can be installed again.").isVisible());
    ASSERT_TRUE(shown_.named("keep base").hasActiveFocus());
    shown_.key(Qt::Key_Escape);
    EXPECT_TRUE(action_.hasActiveFocus());
    EXPECT_TRUE(removed_.isEmpty());
    shown_.key(Qt::Key_Space);
    shown_.click(shown_.named("remove base"));
    EXPECT_EQ(removed_.size(), 1);
    EXPECT_TRUE(acted_.isEmpty());
}

TEST_F(ModelRow, theOneInUseIsChosenByItsDotAlone) {
    QSignalSpy used(shown_.card.get(), SIGNAL(used()));
    QQuickItem& dot = shown_.named("use base");
    EXPECT_FALSE(dot.isVisible());
    install();
    shown_.set("inUse", true);
    EXPECT_TRUE(dot.property("checked").toBool());
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&dot)->state().checked);
    shown_.click(dot);
    EXPECT_TRUE(dot.property("checked").toBool()) << "one that is chosen stays so";
    EXPECT_EQ(used.size(), 1);
    shown_.set("inUse", false);
    EXPECT_FALSE(dot.property("checked").toBool());
}

TEST_F(ModelRow, oneOfTheSystemsOffersNothingToDo) {
    install();
    shown_.set("actionText", QString());
    EXPECT_FALSE(action_.isVisible());
}

}  // namespace
}  // namespace korvane
