#include "ui/player/PlayerView.h"

#include <gtest/gtest.h>

#include <QTest>
#include <thread>

#include "tests/ui/controls/Stage.h"
#include "tests/ui/player/PlayedPictures.h"

namespace korvane {
namespace {

const QByteArray kView = R"(
    import Korvane.Player
    Item {
        PlayerView { objectName: "view"; width: 90; height: 160; radius: 10 }
    }
)";

class PlayerViewTest : public ::testing::Test {
  protected:
    PlayerViewTest() { view().setSource(&source); }

    PlayerView& view() { return dynamic_cast<PlayerView&>(stage.item("view")); }
    qreal ratio() { return stage.view().effectiveDevicePixelRatio(); }
    QSize pixels(int width, int height) { return QSize(width, height) * ratio(); }
    QColor at(qreal x, qreal y) {
        return stage.picture().pixelColor(static_cast<int>(x * ratio()), static_cast<int>(y * ratio()));
    }
    bool comesToShow(const QColor& color, qreal x = 45, qreal y = 80) {
        return Stage::wait([&] { return at(x, y) == color; });
    }

    RecordingSource source;
    Stage stage{kView};
};

TEST_F(PlayerViewTest, aPictureIsShownPixelForPixelInItsColours) {
    const QSize size = pixels(90, 160);
    source.consumer().show(
        pictureOf(size, [](int x, int y) { return QColor(x % 2 * 255, y % 256, (x + y) % 256); }));
    ASSERT_TRUE(Stage::wait([&] { return view().hasPicture(); }));
    const QImage shown = stage.picture();
    for (int y = 40; y < size.height() - 40; y += 3) {
        for (int x = 0; x < size.width(); ++x)
            ASSERT_EQ(shown.pixelColor(x, y), QColor(x % 2 * 255, y % 256, (x + y) % 256)) << x << ' ' << y;
    }
}

TEST_F(PlayerViewTest, beyondItsRoundCornersTheGroundIsSeen) {
    source.consumer().show(pictureOf(pixels(90, 160), Qt::white));
    ASSERT_TRUE(comesToShow(Qt::white));
    for (const QPointF corner : {QPointF(0, 0), QPointF(89.5, 0), QPointF(0, 159.5), QPointF(89.5, 159.5)})
        EXPECT_EQ(at(corner.x(), corner.y()), QColor(Qt::black));
    EXPECT_EQ(at(45, 0), QColor(Qt::white));
    EXPECT_EQ(at(0, 80), QColor(Qt::white));
    EXPECT_EQ(at(89.5, 80), QColor(Qt::white));
    EXPECT_EQ(at(90.5, 80), QColor(Qt::black));
}

TEST_F(PlayerViewTest, theNewestOfManyPicturesFromAnotherThreadStays) {
    const QSize size = pixels(90, 160);
    std::thread player([&] {
        for (int i = 0; i <= 100; ++i)
            source.consumer().show(pictureOf(size, QColor(i, 255 - i, 7)));
    });
    player.join();
    EXPECT_TRUE(comesToShow(QColor(100, 155, 7)));
}

TEST_F(PlayerViewTest, picturesAreAskedForAtTheScreensPixelsAndOnlyWhenTheSizeChanges) {
    ASSERT_EQ(source.sizes.size(), 1U);
    EXPECT_EQ(source.sizes.back(), pixels(90, 160));
    view().setPosition(QPointF(30, 10));
    stage.picture();
    EXPECT_EQ(source.sizes.size(), 1U);
    view().setSize(QSizeF(99, 176));
    EXPECT_EQ(source.sizes.back(), pixels(99, 176));
    view().setSize(QSizeF());
    for (const QSize& size : source.sizes)
        EXPECT_FALSE(size.isEmpty());
}

TEST_F(PlayerViewTest, aPictureOfAnotherSizeIsFittedAndKeepsRoundCorners) {
    source.consumer().show(pictureOf(pixels(45, 80), Qt::green));
    ASSERT_TRUE(comesToShow(Qt::green));
    EXPECT_EQ(at(45, 1), QColor(Qt::green));
    EXPECT_EQ(at(45, 158), QColor(Qt::green));
    EXPECT_EQ(at(0, 0), QColor(Qt::black));

    source.consumer().show(pictureOf(pixels(90, 90), Qt::red));
    ASSERT_TRUE(comesToShow(Qt::red));
    EXPECT_EQ(at(45, 20), QColor(Qt::black));
    EXPECT_EQ(at(45, 140), QColor(Qt::black));
}

TEST_F(PlayerViewTest, aPictureThatMissesTheSizeByOnePixelKeepsItsPixels) {
    const QSize size = pixels(90, 160) - QSize(1, 0);
    source.consumer().show(pictureOf(size, [](int x, int) { return x % 2 ? Qt::white : Qt::black; }));
    ASSERT_TRUE(Stage::wait([&] { return view().hasPicture(); }));
    const QImage shown = stage.picture();
    for (int x = 0; x < size.width(); ++x)
        ASSERT_EQ(shown.pixelColor(x, size.height() / 2), QColor(x % 2 ? Qt::white : Qt::black)) << x;
}

TEST_F(PlayerViewTest, anotherPlayerIsAskedAnewAndNothingOfTheOldOneIsSeen) {
    source.consumer().show(pictureOf(pixels(90, 160), Qt::red));
    ASSERT_TRUE(comesToShow(Qt::red));
    const auto old = source.consumers.back();

    Q_EMIT source.sourceChanged();
    EXPECT_FALSE(view().hasPicture());
    EXPECT_EQ(at(45, 80), QColor(Qt::black));
    ASSERT_EQ(source.consumers.size(), 2U);
    EXPECT_NE(source.consumers.back(), old);
    EXPECT_EQ(source.sizes.size(), 2U);

    old->show(pictureOf(pixels(90, 160), Qt::red));
    source.consumer().show(pictureOf(pixels(90, 160), Qt::blue));
    ASSERT_TRUE(comesToShow(Qt::blue));
    old->show(pictureOf(pixels(90, 160), Qt::red));
    QCoreApplication::processEvents();
    EXPECT_EQ(at(45, 80), QColor(Qt::blue));
}

TEST_F(PlayerViewTest, aPictureOfTheOldPlayerThatIsOnItsWayIsNotTakenForTheNewOnes) {
    source.consumer().show(pictureOf(pixels(90, 160), Qt::red));
    Q_EMIT source.sourceChanged();
    QCoreApplication::processEvents();
    EXPECT_FALSE(view().hasPicture());
}

TEST_F(PlayerViewTest, theSameSourceIsNotGivenAConsumerTwice) {
    view().setSource(&source);
    EXPECT_EQ(source.consumers.size(), 1U);
}

TEST_F(PlayerViewTest, aViewThatGoesTakesItsConsumerBack) {
    const auto consumer = source.consumers.back();
    delete &view();
    EXPECT_EQ(source.consumers.back(), nullptr);
    consumer->show(pictureOf(pixels(90, 160), Qt::red));
    QCoreApplication::processEvents();
}

TEST_F(PlayerViewTest, aPictureOnItsWayWhenTheViewGoesIsDropped) {
    source.consumer().show(pictureOf(pixels(90, 160), Qt::red));
    delete &view();
    QCoreApplication::processEvents();
}

TEST_F(PlayerViewTest, theViewStaysEmptyOnceItsSourceIsGone) {
    auto passing = std::make_unique<RecordingSource>();
    view().setSource(passing.get());
    passing->consumer().show(pictureOf(pixels(90, 160), Qt::red));
    ASSERT_TRUE(comesToShow(Qt::red));
    passing.reset();
    EXPECT_EQ(view().source(), nullptr);
    EXPECT_FALSE(view().hasPicture());
    EXPECT_EQ(at(45, 80), QColor(Qt::black));
}

}  // namespace
}  // namespace korvane
