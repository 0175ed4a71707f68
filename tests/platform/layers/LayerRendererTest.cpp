#include "platform/layers/LayerRenderer.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <limits>
#include <thread>

#include "tests/platform/layers/RenderedPicture.h"

namespace korvane {
namespace {

using namespace layertest;

TEST(LayerRenderer, showsEachLineInItsHalfOpenSpanOnly) {
    const auto tree = treeOf(
        {{.text = "one", .begin = 0.0, .duration = 1.0}, {.text = "two", .begin = 1.0, .duration = 0.5}});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    const auto first = renderer.overlaysAt(0.0);
    ASSERT_EQ(first.size(), 1U) << "a line that starts at 0 is there in the very first frame";
    EXPECT_EQ(first[0].opacity, 1.0);
    const auto second = renderer.overlaysAt(1.0);
    ASSERT_EQ(second.size(), 1U);
    EXPECT_NE(second[0].bitmap->pixels, first[0].bitmap->pixels);
    EXPECT_EQ(renderer.overlaysAt(1.4999).size(), 1U);
    EXPECT_TRUE(renderer.overlaysAt(1.5).empty());
}

TEST(LayerRenderer, theSamePictureIsTheSameObject) {
    const auto tree = treeOf({{.text = "still", .duration = 2.0, .popping = true}});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    const auto small = renderer.overlaysAt(0.0).at(0).bitmap;
    const auto settled = renderer.overlaysAt(0.4).at(0).bitmap;
    EXPECT_NE(small, settled);
    EXPECT_EQ(renderer.overlaysAt(1.0).at(0).bitmap, settled);
    EXPECT_EQ(renderer.overlaysAt(0.0).at(0).bitmap, small);
}

TEST(LayerRenderer, letsGoOfALinesPicturesWhenItIsGone) {
    const auto tree = treeOf({{.text = "gone"}});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    const std::weak_ptr<const OverlayBitmap> bitmap = renderer.overlaysAt(0.5).at(0).bitmap;
    EXPECT_FALSE(bitmap.expired());
    EXPECT_TRUE(renderer.overlaysAt(2.0).empty());
    EXPECT_TRUE(bitmap.expired());
}

TEST(LayerRenderer, laterLayersLieOnTop) {
    const auto tree = treeOf({{.text = "below", .color = {1, 0, 0, 1}, .begin = 0.5}, {.text = "above"}});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    const auto overlays = renderer.overlaysAt(0.75);
    ASSERT_EQ(overlays.size(), 2U);
    EXPECT_GT(colorfulPixels(overlays[0]), 100);
    EXPECT_EQ(colorfulPixels(overlays[1]), 0);
}

TEST(LayerRenderer, whatLiesBelowTheVideoIsNotDrawn) {
    const auto tree = treeOf({{.text = "over"}});
    auto parent = std::make_shared<Layer>(*tree.parent);
    std::swap(parent->sublayers[0], parent->sublayers[1]);
    LayerRenderer renderer(parent, tree.video, kCanvas);
    EXPECT_TRUE(renderer.overlaysAt(0.5).empty());
}

TEST(LayerRenderer, aTreeWithoutTextDrawsNothing) {
    const auto tree = treeOf({});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    EXPECT_TRUE(renderer.overlaysAt(0.0).empty());
    LayerRenderer none(nullptr, nullptr, kCanvas);
    EXPECT_TRUE(none.overlaysAt(0.0).empty());
}

TEST(LayerRenderer, blankTextAndImpossibleSizesDrawNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto tree = treeOf({{.text = ""},
                              {.text = " \n "},
                              {.text = "x", .fontSize = 0.0},
                              {.text = "x", .fontSize = -5.0},
                              {.text = "x", .fontSize = nan}});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    EXPECT_TRUE(renderer.overlaysAt(0.5).empty());
}

TEST(LayerRenderer, enormousSizesStayWithinTheCanvas) {
    const Shadow haze{Color::black(), 0.85, 1e9, {1e9, -2.0}};
    for (const double fontSize : {5000.0, 1e7, 1e300}) {
        const auto tree = treeOf({{.text = "Huge", .fontSize = fontSize, .shadow = haze}});
        LayerRenderer renderer(tree.parent, tree.video, kCanvas);
        for (const auto& overlay : renderer.overlaysAt(0.5)) {
            EXPECT_GE(overlay.x, 0);
            EXPECT_LE(overlay.x + overlay.bitmap->width, 1080);
            EXPECT_LE(overlay.y + overlay.bitmap->height, 1920);
        }
    }
}

TEST(LayerRenderer, aSmallerCanvasShowsTheSameLinesInProportion) {
    const Line line{.text = "So the quick brown fox jumps over it",
                    .shadow = Shadow{Color::black(), 0.85, 8.0, {0, -2}}};
    const auto whole = inkBox(rendered(line));
    const auto third = inkBox(rendered(line, 0.5, 1.0 / 3.0));
    EXPECT_NEAR(third.left, whole.left / 3.0, 0.4);
    EXPECT_NEAR(third.top, whole.top / 3.0, 0.4);
    EXPECT_NEAR(third.width(), whole.width() / 3.0, 0.6);
    EXPECT_NEAR(third.height(), whole.height() / 3.0, 0.6);
}

TEST(LayerRenderer, findsTheVisibleLineAmongThousandsAtOnce) {
    std::vector<Line> lines;
    for (int i = 0; i < 7000; ++i)
        lines.push_back({.text = "line " + std::to_string(i), .begin = i * 0.5, .duration = 0.5});
    const auto tree = treeOf(lines);
    LayerRenderer renderer(tree.parent, tree.video, kCanvas);
    const auto bitmap = renderer.overlaysAt(3000.1).at(0).bitmap;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(renderer.overlaysAt(3000.1 + i * 1e-5).at(0).bitmap, bitmap);
    const std::chrono::duration<double, std::micro> each =
        (std::chrono::steady_clock::now() - start) / 10000.0;
    // Evaluating all of them takes more than 500 microseconds.
    EXPECT_LT(each.count(), 100.0);
}

TEST(LayerRenderer, drawsTheSameOnAWorkerThread) {
    const Line line{.text = "Worker 日本 🔥", .shadow = Shadow{Color::black(), 0.85, 8.0, {0, -2}}};
    const auto here = rendered(line);
    std::shared_ptr<const OverlayBitmap> there;
    std::thread([&] { there = rendered(line).bitmap; }).join();
    EXPECT_EQ(here.bitmap->pixels, there->pixels);
}

TEST(LayerRenderer, manyRenderersWorkAtOnce) {
    const Line line{.text = "Together שלום 🔥", .shadow = Shadow{Color::black(), 0.85, 8.0, {0, -2}}};
    const auto expected = rendered(line).bitmap->pixels;
    std::vector<std::thread> threads;
    std::array<bool, 4> same{};
    for (std::size_t i = 0; i < same.size(); ++i) {
        threads.emplace_back([&, i] {
            same[i] = true;
            for (int k = 0; k < 10; ++k)
                same[i] = same[i] && rendered(line).bitmap->pixels == expected;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(same, (std::array<bool, 4>{true, true, true, true}));
}

}  // namespace
}  // namespace korvane
