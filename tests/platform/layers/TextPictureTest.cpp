#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/layers/RenderedPicture.h"

namespace korvane {
namespace {

using namespace layertest;

const Rect kFrame = Line{}.frame;

TEST(TextPicture, isCentredInItsFrame) {
    const Box box = inkBox(rendered({.text = "HOH"}));
    EXPECT_NEAR(box.centerX(), kFrame.center().x, 1.0);
    // Capitals stand on the baseline: their middle lies a little above the line's.
    EXPECT_NEAR(box.centerY(), kFrame.center().y, 72.0 * 0.06);
    const Box two = inkBox(rendered({.text = "HOH\nHOH"}));
    EXPECT_NEAR(two.centerX(), kFrame.center().x, 1.0);
    EXPECT_NEAR(two.centerY(), box.centerY(), 1.0) << "the block is centred, not its first line";
}

TEST(TextPicture, eachLineIsCentred) {
    const auto overlay = rendered({.text = "HOHOHOHOHOH\nH"});
    const QImage image = imageOf(overlay);
    const Box box = inkBox(overlay);
    // The lone letter of the second line stands in the middle.
    const int y = static_cast<int>(box.bottom) - 5 - overlay.y;
    int left = -1;
    int right = -1;
    for (int x = 0; x < image.width(); ++x) {
        if (qAlpha(image.pixel(x, y)) < 128)
            continue;
        left = left < 0 ? x : left;
        right = x;
    }
    EXPECT_NEAR(overlay.x + (left + right + 1) / 2.0, kFrame.center().x, 1.5);
}

TEST(TextPicture, aBlankAtABreakDoesNotPushALineAside) {
    const Box plain = inkBox(rendered({.text = "HOH"}));
    const Box trailing = inkBox(rendered({.text = "HOH   "}));
    EXPECT_NEAR(plain.left, trailing.left, 0.01);
    const Box wrapped = inkBox(rendered({.text = "HOLD ON TO THE HANDLE NOW"}));
    const Box broken = inkBox(rendered({.text = "HOLD ON TO THE HANDLE\nNOW"}));
    EXPECT_NEAR(wrapped.left, broken.left, 0.05);
    EXPECT_NEAR(wrapped.right, broken.right, 0.05);
}

TEST(TextPicture, longTextWrapsWithinTheFrame) {
    const auto overlay = rendered({.text = "HOLD ON TO THE HANDLE NOW"});
    EXPECT_EQ(inkBands(overlay), 2);
    const Box box = inkBox(overlay);
    EXPECT_GE(box.left, kFrame.x);
    EXPECT_LE(box.right, kFrame.x + kFrame.width);
}

TEST(TextPicture, aWordTooLongForTheFrameBreaksInsteadOfLeavingIt) {
    const auto overlay = rendered({.text = "HHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHH"});
    EXPECT_GE(inkBands(overlay), 2);
    const Box box = inkBox(overlay);
    EXPECT_GE(box.left, kFrame.x - 1.0);
    EXPECT_LE(box.right, kFrame.x + kFrame.width + 1.0);
}

TEST(TextPicture, textThatNeedsMoreHeightGoesOnBeyondTheFrameAlikeOnBothSides) {
    const Box box = inkBox(rendered({.text = "H\nH\nH\nH\nH\nH\nH"}));
    EXPECT_LT(box.top, kFrame.y);
    EXPECT_GT(box.bottom, kFrame.y + kFrame.height);
    EXPECT_NEAR(box.centerY(), inkBox(rendered({.text = "H"})).centerY(), 1.0);
}

TEST(TextPicture, chineseAndJapaneseBreakBetweenCharactersButNotBeforeAFullStop) {
    // Twelve characters of 72 px fit into 928 px; the full stop would be the 13th.
    const auto overlay = rendered({.text = "日本語字幕日本語字幕日本。"});
    EXPECT_EQ(inkBands(overlay), 2);
    const Box box = inkBox(overlay);
    const auto stopAlone = inkBox(rendered({.text = "日本語字幕日本語字幕日\n本。"}));
    EXPECT_NEAR(box.width(), stopAlone.width(), 0.1);
    EXPECT_NEAR(box.height(), stopAlone.height(), 0.1);
}

TEST(TextPicture, emojiAreInColour) {
    EXPECT_EQ(colorfulPixels(rendered({.text = "Fire"})), 0);
    for (const char* text : {"Fire 🔥", "😀", "I ❤️ it", "🇫🇷", "👍🏽"})
        EXPECT_GT(colorfulPixels(rendered({.text = text})), 300) << text;
}

TEST(TextPicture, emojiAreInColourEvenWhereTheFontHasItsOwnSign) {
    EXPECT_GT(colorfulPixels(rendered({.text = "😀", .font = "DejaVuSans-Bold"})), 300);
}

TEST(TextPicture, aSequenceOfEmojiIsOnePicture) {
    const double one = inkBox(rendered({.text = "👧"})).width();
    EXPECT_LT(inkBox(rendered({.text = "👨‍👩‍👧"})).width(), 1.4 * one);
    EXPECT_LT(inkBox(rendered({.text = "1️⃣"})).width(), 1.4 * one);
    EXPECT_GT(inkBox(rendered({.text = "👧👧"})).width(), 1.8 * one);
}

TEST(TextPicture, anEmojiDoesNotMoveTheWordsBesideIt) {
    const Box plain = inkBox(rendered({.text = "HOH"}));
    const Box mixed = inkBox(rendered({.text = "HOH\nHOH"}));
    const auto with = rendered({.text = "HOH\n🔥"});
    EXPECT_NEAR(inkBox(with).top, mixed.top, 0.1);
    EXPECT_GT(mixed.height(), plain.height());
}

/// Widths of the stretches of columns that hold ink, left to right.
std::vector<int> strokes(const PlacedOverlay& overlay) {
    const QImage image = imageOf(overlay);
    std::vector<int> widths;
    bool inside = false;
    for (int x = 0; x < image.width(); ++x) {
        bool inked = false;
        for (int y = 0; y < image.height() && !inked; ++y)
            inked = qAlpha(image.pixel(x, y)) >= 128;
        if (inked && !inside)
            widths.push_back(0);
        if (inked)
            ++widths.back();
        inside = inked;
    }
    return widths;
}

TEST(TextPicture, rightToLeftTextRunsFromTheRight) {
    // The wide letter comes first in memory: it stands at the right.
    const auto widths = strokes(rendered({.text = "שו", .font = "DejaVuSans-Bold", .fontSize = 200.0}));
    ASSERT_EQ(widths.size(), 2U);
    EXPECT_GT(widths[1], 2 * widths[0]);
}

TEST(TextPicture, aLineThatBeginsRightToLeftGoesOnToTheLeft) {
    // In memory: wide Hebrew letter, blank, I. Left to right the I would come last.
    const auto hebrewFirst = strokes(rendered({.text = "ש I", .font = "DejaVuSans-Bold", .fontSize = 200.0}));
    ASSERT_EQ(hebrewFirst.size(), 2U);
    EXPECT_GT(hebrewFirst[1], hebrewFirst[0]);
    const auto latinFirst = strokes(rendered({.text = "I ש", .font = "DejaVuSans-Bold", .fontSize = 200.0}));
    ASSERT_EQ(latinFirst.size(), 2U);
    EXPECT_GT(latinFirst[1], latinFirst[0]);
}

TEST(TextPicture, arabicLettersJoin) {
    // Apart (with a zero-width non-joiner between them) the letters take their wider final forms.
    const Line joined{.text = "ببب", .font = "DejaVuSans", .fontSize = 150.0};
    Line apart = joined;
    apart.text = "ب\u200cب\u200cب";
    EXPECT_LT(inkBox(rendered(joined)).width(), 0.85 * inkBox(rendered(apart)).width());
}

TEST(TextPicture, lettersAreKerned) {
    const auto pairs = [](const char* text) {
        return inkBox(rendered({.text = text, .fontSize = 150.0})).width();
    };
    // H has straight sides and is not kerned: what A and V lose beside each other is kerning alone.
    const double loose = pairs("HAH") + pairs("HVH") - pairs("HH");
    EXPECT_LT(pairs("HAVH"), loose - 5.0);
}

TEST(TextPicture, aFractionalFontSizeIsKept) {
    const double at72 = inkBox(rendered({.text = "HOHOHOH", .fontSize = 72.0})).width();
    const double at72andAHalf = inkBox(rendered({.text = "HOHOHOH", .fontSize = 72.5})).width();
    EXPECT_NEAR(at72andAHalf / at72, 72.5 / 72.0, 0.0012);
}

TEST(TextPicture, isDrawnInItsColourWithGreyEdges) {
    const auto overlay = rendered({.text = "SOS", .color = {0.2, 0.4, 0.6, 1.0}});
    const QImage image = imageOf(overlay);
    int partial = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
            const double alpha = qAlpha(pixel);
            partial += alpha > 60 && alpha < 200 ? 1 : 0;
            // No edge leans to red or blue, as those for the stripes of a screen would.
            EXPECT_NEAR(qRed(pixel), 0.2 * alpha, 1.5);
            EXPECT_NEAR(qGreen(pixel), 0.4 * alpha, 1.5);
            EXPECT_NEAR(qBlue(pixel), 0.6 * alpha, 1.5);
        }
    }
    EXPECT_GT(partial, 50) << "edges are smooth";
}

TEST(TextPicture, thePopScalesAboutTheFramesCentreAndKeepsTheLineBreaks) {
    Line line{.text = "HOLD ON TO THE HANDLE NOW", .popping = true};
    const Box settled = inkBox(rendered(line, 0.9));
    const Point center = kFrame.center();
    for (const auto& [seconds, scale] : {std::pair{0.0, 0.78}, {0.35 * 0.55, 1.08}}) {
        const auto overlay = rendered(line, seconds);
        const Box box = inkBox(overlay);
        EXPECT_EQ(inkBands(overlay), 2);
        EXPECT_NEAR(box.width() / settled.width(), scale, 0.0015);
        EXPECT_NEAR(box.height() / settled.height(), scale, 0.005);
        EXPECT_NEAR(box.left, center.x + (settled.left - center.x) * scale, 0.35);
        EXPECT_NEAR(box.top, center.y + (settled.top - center.y) * scale, 0.35);
    }
}

/// Share of pixels on edges: a stretched picture's edges are wider in proportion to its scale.
double softness(const PlacedOverlay& overlay) {
    const QImage image = imageOf(overlay);
    int soft = 0;
    int solid = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            soft += alpha > 25 && alpha < 230 ? 1 : 0;
            solid += alpha >= 230 ? 1 : 0;
        }
    }
    return soft / std::sqrt(static_cast<double>(solid));
}

TEST(TextPicture, aScaledLineIsAsSharpAsAnUnscaledOne) {
    const Line line{.text = "SOS ABC", .popping = true};
    const double still = softness(rendered(line, 0.9));
    // An edge stays one pixel wide: soft pixels grow with the outline's length, as the square root of the
    // area.
    EXPECT_NEAR(softness(rendered(line, 0.35 * 0.55)) / still, 1.0, 0.08);
    EXPECT_NEAR(softness(rendered(line, 0.0)) / still, 1.0, 0.08);
}

TEST(TextPicture, aMissingFontIsReplacedByOneOfTheSameWeight) {
    const auto ink = [](const char* font) {
        const auto overlay = rendered({.text = "Weight", .font = font});
        const QImage image = imageOf(overlay);
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
        return count;
    };
    EXPECT_EQ(ink("HelveticaNeue-Bold"), ink("Inter-Bold"));
    EXPECT_LT(ink("HelveticaNeue-Thin"), 0.5 * ink("HelveticaNeue-Bold"));
}

TEST(TextPicture, brokenTextIsDrawnAsFarAsItGoes) {
    for (const std::string& text : {std::string("a\xff\xfe b"), std::string("a\0b", 3),
                                    std::string("tab\there"), std::string("\xed\xa0\x80")})
        EXPECT_GT(rendered({.text = text}).bitmap->width, 10);
}

}  // namespace
}  // namespace korvane
