#include "ui/player/FrameMailbox.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/ui/player/PlayedPictures.h"

namespace korvane {
namespace {

const QSize kSize(4, 4);

TEST(FrameMailbox, theNewestPictureIsTakenOnce) {
    FrameMailbox mailbox([] {});
    const auto first = pictureOf(kSize, Qt::red);
    const auto second = pictureOf(kSize, Qt::blue);
    mailbox.show(first);
    mailbox.show(second);
    EXPECT_EQ(mailbox.take(), second.picture);
    EXPECT_EQ(mailbox.take(), nullptr);
}

TEST(FrameMailbox, picturesThatNobodyTakesAreAnnouncedOnce) {
    int arrived = 0;
    FrameMailbox mailbox([&] { ++arrived; });
    for (int i = 0; i < 5; ++i)
        mailbox.show(pictureOf(kSize, Qt::red));
    EXPECT_EQ(arrived, 1);
    mailbox.take();
    mailbox.show(pictureOf(kSize, Qt::red));
    EXPECT_EQ(arrived, 2);
}

TEST(FrameMailbox, aReplacedPictureIsLetGoAtOnce) {
    FrameMailbox mailbox([] {});
    auto first = pictureOf(kSize, Qt::red);
    const std::weak_ptr<const DisplayPicture> watched = first.picture;
    mailbox.show(first);
    first = {};
    EXPECT_FALSE(watched.expired());
    mailbox.show(pictureOf(kSize, Qt::blue));
    EXPECT_TRUE(watched.expired());
}

TEST(FrameMailbox, afterClosingNothingIsAnnouncedOrKept) {
    int arrived = 0;
    FrameMailbox mailbox([&] { ++arrived; });
    mailbox.show(pictureOf(kSize, Qt::red));
    mailbox.close();
    mailbox.show(pictureOf(kSize, Qt::red));
    EXPECT_EQ(arrived, 1);
    EXPECT_EQ(mailbox.take(), nullptr);
}

TEST(FrameMailbox, aPlayerWithoutAPictureChangesNothing) {
    int arrived = 0;
    FrameMailbox mailbox([&] { ++arrived; });
    mailbox.show(PlayerFrame{});
    EXPECT_EQ(arrived, 0);
}

TEST(FrameMailbox, closingWaitsForAnAnnouncementThatIsUnderWay) {
    for (int round = 0; round < 50; ++round) {
        auto alive = std::make_unique<int>(0);
        FrameMailbox mailbox([&] { ++*alive; });
        std::thread player([&] {
            for (int i = 0; i < 20; ++i) {
                mailbox.show(pictureOf(kSize, Qt::red));
                mailbox.take();
            }
        });
        mailbox.close();
        alive.reset();
        player.join();
    }
}

}  // namespace
}  // namespace korvane
