#include "platform/speech/whisper/WhisperWords.h"

#include <gtest/gtest.h>

#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

constexpr std::int64_t hundredth = 160;
const Locale english{"en-US"};

/// A stretch at `begin` with a voice in [from, to) seconds of it.
SpeechStretch stretch(std::int64_t begin, double seconds, double from, double to) {
    SpeechStretch made;
    made.begin = begin;
    made.samples = sound::background(seconds, -80.0);
    sound::addVoice(made.samples, from, to, -20.0);
    made.floorDb = -80.0;
    return made;
}

WhisperSegment segment(std::int64_t start, std::int64_t end, std::vector<WhisperToken> tokens,
                       double silence = 0.0) {
    return {start, end, silence, std::move(tokens)};
}

/// Voices at 1.25-2.25 s and 11.25-12.25 s of the recording, joined to one window of 3 s.
SpeechWindow twoPhrases() {
    SpeechWindow window;
    window.add({stretch(16000, 1.5, 0.25, 1.25)});
    window.add({stretch(176000, 1.5, 0.25, 1.25)});
    return window;
}

TEST(SpeechWindow, takesStretchesUpToHalfAMinute) {
    SpeechWindow window;
    EXPECT_TRUE(window.isEmpty());
    const auto half = stretch(0, 15.0, 0.5, 14.0);
    EXPECT_TRUE(window.hasRoomFor(half));
    window.add({half});
    EXPECT_TRUE(window.hasRoomFor(half));
    window.add({stretch(300000, 15.0, 0.5, 14.0)});
    EXPECT_EQ(std::ssize(window.samples()), SpeechWindow::longest);
    EXPECT_FALSE(window.hasRoomFor(stretch(600000, 0.1, 0.0, 0.1)));
    SpeechWindow empty;
    EXPECT_TRUE(empty.hasRoomFor(stretch(0, 40.0, 0.0, 40.0)));
}

TEST(SpeechWindow, everySampleIsFoundAgainInTheRecording) {
    const auto window = twoPhrases();
    const auto& pieces = window.pieces();
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0].offset, 0);
    EXPECT_EQ(pieces[1].offset, 24000);
    for (const auto& piece : pieces) {
        for (std::int64_t i = 0; i < std::ssize(piece.stretch.samples); i += 997) {
            EXPECT_EQ(window.samples()[static_cast<std::size_t>(piece.offset + i)],
                      piece.stretch.samples[static_cast<std::size_t>(i)]);
            EXPECT_EQ(piece.inRecording(piece.offset + i), piece.stretch.begin + i);
        }
        EXPECT_EQ(piece.inRecording(piece.end()), piece.stretch.end());
    }
}

TEST(SpeechWindow, theVoiceIsFoundInEachPiece) {
    const auto window = twoPhrases();
    for (const auto& piece : window.pieces()) {
        EXPECT_NEAR(static_cast<double>(piece.voiceBegin - piece.offset), 0.25 * 16000, 400);
        EXPECT_NEAR(static_cast<double>(piece.voiceEnd - piece.offset), 1.25 * 16000, 400);
    }
}

TEST(SpeechWindow, aPieceThatWasCutInMidSpeechIsVoiceUpToTheCut) {
    auto cut = stretch(0, 1.0, 0.3, 1.0);
    cut.endsInSpeech = true;
    auto rest = stretch(48000, 1.0, 0.0, 0.5);  // what lay between went into another window
    rest.beginsInSpeech = true;
    SpeechWindow window;
    window.add({cut});
    window.add({rest});
    EXPECT_EQ(window.pieces()[0].voiceEnd, 16000);
    EXPECT_EQ(window.pieces()[1].voiceBegin, 16000);
}

TEST(SpeechWindow, whatWasCutInMidSpeechIsOnePieceAgain) {
    auto cut = stretch(32000, 1.0, 0.3, 1.0);
    cut.endsInSpeech = true;
    auto rest = stretch(48000, 1.0, 0.0, 0.5);
    rest.beginsInSpeech = true;
    rest.floorDb = -85.0;
    SpeechWindow window;
    window.add({cut});
    window.add({rest});
    ASSERT_EQ(window.pieces().size(), 1U);
    const auto& piece = window.pieces()[0];
    EXPECT_EQ(piece.stretch.begin, 32000);
    EXPECT_EQ(std::ssize(piece.stretch.samples), 32000);
    EXPECT_FALSE(piece.stretch.endsInSpeech);
    EXPECT_EQ(piece.stretch.floorDb, -85.0);
    EXPECT_NEAR(static_cast<double>(piece.voiceBegin), 0.3 * 16000, 400);
    EXPECT_NEAR(static_cast<double>(piece.voiceEnd), 1.5 * 16000, 400);
    EXPECT_EQ(std::vector<float>(window.samples().begin(), window.samples().end()), piece.stretch.samples);
    window.add({stretch(64000, 1.0, 0.3, 0.6)});
    EXPECT_EQ(window.pieces().size(), 2U) << "behind a pause";
}

TEST(SpeechWindow, aPieceWithoutAnythingLoudIsVoiceAllOver) {
    SpeechWindow window;
    window.add({stretch(0, 1.0, 0.0, 0.0)});
    EXPECT_EQ(window.pieces()[0].voiceBegin, 0);
    EXPECT_EQ(window.pieces()[0].voiceEnd, 16000);
}

TEST(WhisperWords, aWordBeginsWhereTheTokenBeforeItEnds) {
    const auto words = wordsOfWindow(
        {segment(0, 300, {{" one", 60, 1}, {" two", 90, 1}, {" three", 120, 1}})}, twoPhrases(), english);
    ASSERT_EQ(words.size(), 1U);
    ASSERT_EQ(words[0].words.size(), 3U);
    EXPECT_EQ(words[0].words[1].text, "two");
    EXPECT_EQ(words[0].words[1].begin, 16000 + 60 * hundredth);
    EXPECT_EQ(words[0].words[1].end, 16000 + 90 * hundredth);
}

TEST(WhisperWords, theOuterEdgesOfEachPieceAreThoseOfItsVoice) {
    const auto window = twoPhrases();
    const auto words = wordsOfWindow(
        {segment(0, 300, {{" one", 60, 1}, {" two", 118, 1}, {" three", 230, 1}, {" four", 280, 1}})}, window,
        english);
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[0].piece, 0U);
    EXPECT_EQ(words[1].piece, 1U);
    for (const auto& [piece, inPiece] : words) {
        const auto& of = window.pieces()[piece];
        ASSERT_EQ(inPiece.size(), 2U);
        EXPECT_EQ(inPiece.front().begin, of.inRecording(of.voiceBegin));
        EXPECT_EQ(inPiece.back().end, of.inRecording(of.voiceEnd));
    }
    EXPECT_EQ(words[1].words[0].text, "three");
    EXPECT_EQ(words[1].words[0].end, 176000 + 80 * hundredth);
}

TEST(WhisperWords, aWordFarFromTheEdgeIsNotDrawnOutToIt) {
    SpeechWindow window;
    window.add({stretch(0, 10.0, 0.2, 9.8)});
    const auto words =
        wordsOfWindow({segment(400, 520, {{" late", 450, 1}, {" early", 520, 1}})}, window, english);
    ASSERT_EQ(words.size(), 1U);
    EXPECT_EQ(words[0].words.front().begin, 400 * hundredth);
    EXPECT_EQ(words[0].words.back().end, 520 * hundredth);
}

TEST(WhisperWords, afterALongPauseASegmentBeginsAtItsOwnTime) {
    SpeechWindow window;
    window.add({stretch(0, 10.0, 0.2, 9.8)});
    const auto words = wordsOfWindow(
        {segment(0, 100, {{" one", 100, 1}}), segment(300, 400, {{" two", 400, 1}, {" three", 500, 1}})},
        window, english);
    ASSERT_EQ(words.size(), 1U);
    ASSERT_EQ(words[0].words.size(), 3U);
    EXPECT_EQ(words[0].words[0].end, 100 * hundredth);
    EXPECT_EQ(words[0].words[1].begin, 300 * hundredth);
}

TEST(WhisperWords, whatTheModelItselfTakesForSilenceIsDropped) {
    const auto heard = [](double silence, double probability) {
        const auto words = wordsOfWindow(
            {segment(0, 120, {{" thank", 60, probability}, {" you", 110, probability}}, silence)},
            twoPhrases(), english);
        return !words.empty();
    };
    EXPECT_TRUE(heard(0.1, 0.9));
    EXPECT_TRUE(heard(0.1, 0.2));
    EXPECT_TRUE(heard(0.7, 0.9));
    EXPECT_FALSE(heard(0.7, 0.2));
    EXPECT_FALSE(heard(0.9, 0.9));
}

TEST(WhisperWords, aSegmentWhereNobodySpeaksIsDropped) {
    SpeechWindow window;
    window.add({stretch(0, 3.0, 0.2, 1.0)});
    const auto words = wordsOfWindow(
        {segment(0, 100, {{" one", 100, 1}}), segment(180, 280, {{" bye", 250, 1}})}, window, english);
    ASSERT_EQ(words.size(), 1U);
    ASSERT_EQ(words[0].words.size(), 1U);
    EXPECT_EQ(words[0].words[0].text, "one");
}

/// Every word that was found, with its piece left aside.
std::vector<TimedWord> allWords(const std::vector<WhisperSegment>& segments, const SpeechWindow& window,
                                const char* locale = "en-US") {
    std::vector<TimedWord> all;
    for (const auto& [piece, words] : wordsOfWindow(segments, window, Locale{locale}))
        all.insert(all.end(), words.begin(), words.end());
    return all;
}
std::string texts(const std::vector<TimedWord>& words) {
    std::string all;
    for (const auto& word : words)
        all += (all.empty() ? "" : " ") + word.text;
    return all;
}

TEST(WhisperWords, aSegmentThatWasAlignedToOneMomentIsKeptWhereSomebodySpeaks) {
    SpeechWindow window;
    window.add({stretch(0, 10.0, 0.25, 9.75)});
    const auto sameFrame =
        allWords({segment(0, 300, {{" one", 200, 1}, {".", 300, 1}}), segment(300, 340, {{" Yes.", 300, 1}}),
                  segment(340, 600, {{" two", 400, 1}, {" three", 600, 1}})},
                 window);
    ASSERT_EQ(texts(sameFrame), "one. Yes. two three");
    EXPECT_EQ(sameFrame[1], (TimedWord{"Yes.", 300 * hundredth, 340 * hundredth}));
    EXPECT_EQ(
        texts(allWords({segment(0, 300, {{" one", -1, 1}}), segment(300, 300, {{" two", -1, 1}})}, window)),
        "one two");
    // Where nobody speaks, neither around the moment nor where the segment says that it lies, it is made up.
    SpeechWindow shortVoice;
    shortVoice.add({stretch(0, 5.0, 0.2, 1.0)});
    EXPECT_EQ(texts(allWords({segment(0, 100, {{" one", 100, 1}}), segment(300, 400, {{" two", 300, 1}})},
                             shortVoice)),
              "one");
}

TEST(WhisperWords, aFullStopThatWasAlignedLateTakesNoTimeFromTheWordsBehindIt) {
    SpeechWindow window;
    window.add({stretch(0, 10.0, 0.25, 9.75)});
    const auto words = allWords({segment(0, 300, {{" one", 200, 1}, {".", 330, 1}}),
                                 segment(300, 330, {{" Yes", 310, 1}, {" I", 320, 1}, {" do.", 330, 1}}),
                                 segment(340, 600, {{" two", 400, 1}, {" three", 600, 1}})},
                                window);
    ASSERT_EQ(texts(words), "one. Yes I do. two three");
    EXPECT_EQ(words[0].end, 200 * hundredth);
    EXPECT_EQ(words[1], (TimedWord{"Yes", 300 * hundredth, 310 * hundredth}));
    EXPECT_EQ(words[2], (TimedWord{"I", 310 * hundredth, 320 * hundredth}));
    EXPECT_EQ(words[3], (TimedWord{"do.", 320 * hundredth, 330 * hundredth}));
}

TEST(WhisperWords, aCutInMidSpeechMovesNoWord) {
    auto cut = stretch(0, 10.0, 0.25, 10.0);
    cut.endsInSpeech = true;
    auto rest = stretch(160000, 10.0, 0.0, 9.75);
    rest.beginsInSpeech = true;
    const std::vector<WhisperSegment> heard{segment(
        0, 2000, {{" zero", 900, 1}, {" alpha", 980, 1}, {" bravo", 1040, 1}, {" charlie", 1900, 1}})};
    SpeechWindow window;
    window.add({cut});
    window.add({rest});
    const auto words = allWords(heard, window);
    ASSERT_EQ(texts(words), "zero alpha bravo charlie");
    EXPECT_EQ(words[1], (TimedWord{"alpha", 900 * hundredth, 980 * hundredth}));
    EXPECT_EQ(words[2], (TimedWord{"bravo", 980 * hundredth, 1040 * hundredth}));
}

TEST(WhisperWords, aWordBeforeOrBehindACutIsNotDrawnOutToIt) {
    auto cut = stretch(0, 5.0, 0.25, 5.0);
    cut.endsInSpeech = true;
    SpeechWindow before;
    before.add({cut});
    const auto last = allWords({segment(0, 500, {{" one", 300, 1}, {" two", 460, 1}})}, before);
    ASSERT_EQ(texts(last), "one two");
    EXPECT_EQ(last[1].end, 460 * hundredth) << "what follows up to the cut is the beginning of another word";
    auto rest = stretch(80000, 5.0, 0.0, 4.75);
    rest.beginsInSpeech = true;
    SpeechWindow behind;
    behind.add({rest});
    const auto first =
        allWords({segment(0, 30, {}), segment(40, 400, {{" one", 100, 1}, {" two", 400, 1}})}, behind);
    ASSERT_EQ(texts(first), "one two");
    EXPECT_EQ(first[0].begin, 80000 + 40 * hundredth);
}

TEST(WhisperWords, numbersInTwoPhrasesAreTwoWords) {
    const auto heard = [](std::int64_t second) {
        return allWords({segment(0, 300, {{" zu", 60, 1}, {" 20", 110, 1}, {" 100", second, 1}})},
                        twoPhrases(), "de-DE");
    };
    EXPECT_EQ(texts(heard(120)), "zu 20\u00a0100");
    EXPECT_EQ(texts(heard(280)), "zu 20 100");
}

TEST(WhisperWords, withoutAnAlignmentASegmentIsSharedOutEvenly) {
    SpeechWindow window;
    window.add({stretch(0, 3.0, 0.0, 3.0)});
    const auto words = wordsOfWindow({segment(0, 300, {{" one", -1, 1}, {" two", -1, 1}, {" three", -1, 1}})},
                                     window, english);
    ASSERT_EQ(words.size(), 1U);
    ASSERT_EQ(words[0].words.size(), 3U);
    EXPECT_EQ(words[0].words[0].end, 100 * hundredth);
    EXPECT_EQ(words[0].words[1].end, 200 * hundredth);
}

TEST(WhisperWords, timesThatRunBackOrLieOutsideStayInOrderAndInside) {
    SpeechWindow window;
    window.add({stretch(16000, 1.5, 0.25, 1.25)});
    window.add({stretch(176000, 1.5, 0.25, 1.5)});
    const auto words = wordsOfWindow({segment(200, -50, {{" one", 250, 1}, {" two", 10, 1}}),
                                      segment(99999, 5, {{" three", 99999, 1}, {" four", 3, 1}})},
                                     window, english);
    std::int64_t end = 0;
    std::string all;
    for (const auto& [piece, inPiece] : words) {
        for (const auto& word : inPiece) {
            all += word.text + " ";
            EXPECT_GE(word.begin, end);
            EXPECT_GE(word.end, word.begin);
            EXPECT_GE(word.begin, window.pieces()[piece].stretch.begin);
            EXPECT_LE(word.end, window.pieces()[piece].stretch.end());
            end = word.end;
        }
    }
    EXPECT_EQ(all, "one two three four ");
}

TEST(WhisperWords, nothingHeardIsNothing) {
    EXPECT_TRUE(wordsOfWindow({}, twoPhrases(), english).empty());
    EXPECT_TRUE(wordsOfWindow({segment(0, 100, {})}, twoPhrases(), english).empty());
}

}  // namespace
}  // namespace korvane
