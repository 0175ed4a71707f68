#include "platform/layers/EmojiRuns.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace korvane {
namespace {

/// The marked pieces of a text.
QStringList pieces(const char8_t* text) {
    const auto marked = markEmoji(QString::fromUtf8(text));
    QStringList found;
    for (const auto& run : marked.emoji)
        found << marked.text.mid(run.start, run.length);
    return found;
}

QString u(const char8_t* text) {
    return QString::fromUtf8(text);
}

TEST(EmojiRuns, plainTextHasNone) {
    EXPECT_TRUE(pieces(u8"Only 12 words # * © ™ 日本 →").isEmpty());
    EXPECT_TRUE(pieces(u8"").isEmpty());
}

TEST(EmojiRuns, picturesAreFoundBetweenWords) {
    EXPECT_EQ(pieces(u8"a 🔥 b 😀"), (QStringList{u(u8"🔥"), u(u8"😀")}));
}

TEST(EmojiRuns, neighboursAreOneRun) {
    EXPECT_EQ(pieces(u8"x🔥😀y"), QStringList{u(u8"🔥😀")});
}

TEST(EmojiRuns, sequencesStayInOnePiece) {
    EXPECT_EQ(pieces(u8"👨‍👩‍👧"), QStringList{u(u8"👨‍👩‍👧")});
    EXPECT_EQ(pieces(u8"👍🏽"), QStringList{u(u8"👍🏽")});
    EXPECT_EQ(pieces(u8"🇫🇷"), QStringList{u(u8"🇫🇷")});
}

TEST(EmojiRuns, aSelectorTurnsASignIntoAPictureAndIsTakenOut) {
    EXPECT_EQ(pieces(u8"I ❤️ it"), QStringList{u(u8"❤")});
    EXPECT_EQ(markEmoji(u(u8"I ❤️ it")).text, u(u8"I ❤ it"));
    EXPECT_EQ(pieces(u8"❤️‍🔥"), QStringList{u(u8"❤‍🔥")});
    EXPECT_TRUE(pieces(u8"I ❤ it").isEmpty());
}

TEST(EmojiRuns, aSelectorTurnsAPictureIntoASign) {
    EXPECT_TRUE(pieces(u8"⚡︎").isEmpty());
}

TEST(EmojiRuns, aKeyCapIsOnePicture) {
    EXPECT_EQ(pieces(u8"No. 1️⃣!"), QStringList{u(u8"1⃣")});
}

}  // namespace
}  // namespace korvane
