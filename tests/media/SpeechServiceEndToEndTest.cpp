// From an M4A file, as the workflow writes one, to words, with the recogniser that is installed.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "media/SpeechService.h"
#include "platform/speech/InstalledSpeechEngines.h"
#include "platform/speech/SystemSpeechAuthorization.h"
#include "platform/tasks/Cancellation.h"
#include "tests/media/SpeechDoubles.h"
#include "tests/platform/speech/SpokenFixture.h"

namespace korvane {
namespace {

const char* const sentence = "every morning my father walked to the station and took the train to the city";

/// The sentence after a second of silence, as AAC.
std::filesystem::path speakToM4a(const TemporaryFolder& folder) {
    auto samples = speak(folder, sentence);
    samples.insert(samples.begin(), spokenRateHz, 0);
    const auto wav = writeWav(folder, "speech.wav", samples);
    const auto m4a = folder.path() / "speech.m4a";
    const auto command = "ffmpeg -v error -i '" + wav.string() + "' -c:a aac '" + m4a.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return m4a;
}

TEST(SpeechServiceEndToEnd, aSpokenSentenceBecomesItsWordsOnTheRecordingsTimeLine) {
    const TemporaryFolder folder;
    const auto m4a = speakToM4a(folder);
    KeepingQueue queue;
    SystemSpeechAuthorization authorization([](const char*) { return std::nullopt; }, StandardFolders());
    const auto registry = makeInstalledSpeechEngines();
    SpeechService service(queue, authorization, *registry);
    std::vector<double> progress;
    const auto words =
        service.transcribe(m4a, 6.0, Locale{"en-US"}, [&](double p) { progress.push_back(p); }, {});
    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? "" : " ") + word.text();
    EXPECT_EQ(text, sentence);
    ASSERT_FALSE(words.empty());
    EXPECT_NEAR(words.front().start(), 1.2, 0.15) << "speech begins 0.2 s into the synthesiser's sound";
    queue.runAll();
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 1.0);
}

TEST(SpeechServiceEndToEnd, aStopEndsItWithCancellationWithinThreeTenthsOfASecond) {
    const TemporaryFolder folder;
    const auto m4a = speakToM4a(folder);
    KeepingQueue queue;
    SystemSpeechAuthorization authorization([](const char*) { return std::nullopt; }, StandardFolders());
    const auto registry = makeInstalledSpeechEngines();
    SpeechService service(queue, authorization, *registry);
    std::stop_source stop;
    std::chrono::steady_clock::time_point stopped;
    std::jthread stopping([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        stopped = std::chrono::steady_clock::now();
        stop.request_stop();
    });
    EXPECT_THROW(service.transcribe(m4a, 6.0, Locale{"en-US"}, nullptr, stop.get_token()), CancellationError);
    stopping.join();
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, std::chrono::milliseconds(300));
}

}  // namespace
}  // namespace korvane
