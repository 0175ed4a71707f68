// Sizes and colours of what the card says and of what it is tinted with.
#include <atomic>

#include "CardWindow.h"
#include "Theme.h"

namespace korvane {
namespace {

/// The texts that are seen to say this; captions of the same words as their controls are the only ones.
std::vector<QQuickItem*> saying(const CardWindow& card, const char* words) {
    std::vector<QQuickItem*> found;
    for (auto* item : card.card->findChildren<QQuickItem*>()) {
        if (item->inherits("QQuickText") && item->property("text").toString() == QString::fromUtf8(words))
            found.push_back(item);
    }
    return found;
}

void expectColor(const QColor& seen, const QColor& wanted, int tolerance) {
    EXPECT_NEAR(seen.red(), wanted.red(), tolerance);
    EXPECT_NEAR(seen.green(), wanted.green(), tolerance);
    EXPECT_NEAR(seen.blue(), wanted.blue(), tolerance);
}

class CardLooks : public ::testing::Test {
  protected:
    EditedStyle style;
    CardWindow card{style};

    void SetUp() override { style.readFonts(); }
    QColor pixel(const char* control, QPointF inside) {
        const QPoint at = card.find(control)->mapToScene(inside).toPoint();
        return card.window.grabWindow().pixelColor(at);
    }
};

TEST_F(CardLooks, captionsAndValuesHaveTheirSizeAndFaintness) {
    const struct {
        const char* words;
        int size;
        double opacity;
    } rows[] = {
        {"Font", 11, 0.45},   {"Weight", 11, 0.45}, {"Size", 11, 0.45}, {"Color", 11, 0.45},
        {"Shadow", 11, 0.45}, {"Blur", 11, 0.45},   {"Pos", 10, 0.45},  {"Spring bounce on entry", 11, 0.45},
        {"72pt", 11, 0.4},    {"8px", 11, 0.4}};
    for (const auto& row : rows) {
        const auto found = saying(card, row.words);
        ASSERT_EQ(found.size(), 1U) << row.words;
        EXPECT_EQ(found[0]->property("font").value<QFont>().pixelSize(), row.size) << row.words;
        const auto color = found[0]->property("color").value<QColor>();
        EXPECT_EQ(color.rgb(), QColor(Qt::white).rgb()) << row.words;
        EXPECT_NEAR(color.alphaF(), row.opacity, 1e-3) << row.words;
    }
}

TEST_F(CardLooks, theTitlesSymbolIsInTheAccent) {
    int found = 0;
    for (const auto* item : card.card->findChildren<QQuickItem*>()) {
        if (item->property("name").toString() != QStringLiteral("captions.bubble.fill"))
            continue;
        EXPECT_EQ(item->property("color").value<QColor>(), Theme::accent());
        ++found;
    }
    EXPECT_EQ(found, 1);
    EXPECT_EQ(saying(card, "Subtitles").size(), 1U);
}

TEST_F(CardLooks, switchesThatAreOnAndSlidersAreInTheAccent) {
    for (const char* name : {"shadow", "bounce"})
        expectColor(pixel(name, {8, 10}), Theme::accent(), 2);
    for (const char* name : {"size", "blur"})
        expectColor(pixel(name, {4, card.find(name)->height() / 2}), Theme::accent(), 2);
    expectColor(pixel("position", {10, card.find("position")->height() - 5}), Theme::accent(), 2);
    card.click("bounce");
    // The knob is where the accent was, and the rest is a veil.
    ASSERT_TRUE(QTest::qWaitFor([&] { return pixel("bounce", {8, 10}) == QColor(Qt::white); }));
    EXPECT_LT(pixel("bounce", {30, 10}).blue(), 160);
}

TEST(CardStart, leavesTheFontsAloneUntilItIsTold) {
    const auto asked = std::make_shared<std::atomic<bool>>(false);
    MadeUpFonts madeUp = MadeUpFonts::few();
    StyleFonts fonts = madeUp.asked();
    fonts.families = [asked] {
        *asked = true;
        return std::vector<std::string>{};
    };
    {
        EditedStyle style(fonts);
        CardWindow card(style);
        card.window.grabWindow();
        // The editor waits for a reading that is under way.
    }
    EXPECT_FALSE(*asked);
    {
        EditedStyle style(fonts);
        style.editor.prefetchFonts();
        EXPECT_TRUE(QTest::qWaitFor([&] { return asked->load(); }));
    }
}

}  // namespace
}  // namespace korvane
