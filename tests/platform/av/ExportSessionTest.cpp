#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <random>
#include <thread>

#include "platform/av/AssetExportSession.h"
#include "platform/ffmpeg/MediaError.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {
namespace {

std::filesystem::path clip() {
    return fixtures::cachedClip("session.mov", [](const auto& to) {
        fixtures::ClipSpec spec;
        spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 12.0)};
        spec.audio = {fixtures::AudioSpec{}};
        spec.audio[0].durationSeconds = 12.0;
        fixtures::writeClip(spec, to);
    });
}

std::shared_ptr<Composition> wholeClip(const std::filesystem::path& path) {
    Asset asset(path);
    auto composition = std::make_shared<Composition>();
    for (const MediaType type : {MediaType::video, MediaType::audio})
        for (const AssetTrack& track : asset.loadTracks(type))
            composition->addMutableTrack(type)->insertTimeRange({kZeroTime, {10, 1}}, track, kZeroTime);
    return composition;
}

std::size_t entriesOf(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

std::string errorOf(const ExportSession& session) {
    try {
        if (session.error())
            std::rethrow_exception(session.error());
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

TEST(ExportSession, writesTheCompositionAndReportsRisingProgressUpToOne) {
    const fixtures::ScratchFolder folder;
    const auto session = makeExportSession(wholeClip(clip()), ExportPreset::highestQuality);
    session->outputPath = folder / "out.mp4";
    std::vector<float> seen;
    session->progressObserver = [&](float p) { seen.push_back(p); };
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::waiting));
    session->run();
    ASSERT_EQ(session->status(), static_cast<int>(ExportStatus::completed)) << errorOf(*session);
    EXPECT_TRUE(std::ranges::is_sorted(seen));
    EXPECT_EQ(seen.back(), 1.0F);
    EXPECT_GT(seen.size(), 50U);
    const auto facts = fixtures::readFacts(folder / "out.mp4");
    EXPECT_EQ(facts.first("video")->presentationTimes.size(), 300U);
    // The last AAC packet is filled up with silence.
    const std::int64_t frames = fixtures::readSound(folder / "out.mp4").frames();
    EXPECT_GE(frames, 480'000);
    EXPECT_LT(frames, 480'000 + 1024);
    EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(ExportSession, aStopAtAnyMomentTakesEffectAtOnceAndLeavesNothing) {
    std::mt19937 random(1);
    for (int i = 0; i < 8; ++i) {
        const fixtures::ScratchFolder folder;
        const auto session = makeExportSession(wholeClip(clip()), ExportPreset::highestQuality);
        session->outputPath = folder / "out.mp4";
        // Stopped from the progress itself: at the i-th eighth of the way.
        std::mutex mutex;
        std::condition_variable reached;
        bool there = i == 0;
        session->progressObserver = [&](float p) {
            const std::scoped_lock lock(mutex);
            there = there || p >= static_cast<float>(i) / 8.2F;
            reached.notify_all();
        };
        std::jthread runner([&] { session->run(); });
        {
            std::unique_lock lock(mutex);
            reached.wait(lock, [&] { return there; });
        }
        const auto asked = std::chrono::steady_clock::now();
        session->cancelExport();
        runner.join();
        EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(300));
        EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::cancelled)) << errorOf(*session);
        EXPECT_EQ(entriesOf(folder.path()), 0U);
    }
}

TEST(ExportSession, aStopBeforeTheStartWritesNothing) {
    const fixtures::ScratchFolder folder;
    const auto session = makeExportSession(std::make_shared<Asset>(clip()), ExportPreset::audioM4A);
    session->outputPath = folder / "out.m4a";
    session->cancelExport();
    session->run();
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::cancelled));
    EXPECT_EQ(entriesOf(folder.path()), 0U);
}

TEST(ExportSession, writesOnlyOnce) {
    const fixtures::ScratchFolder folder;
    const auto session = makeExportSession(std::make_shared<Asset>(clip()), ExportPreset::audioM4A);
    session->outputPath = folder / "out.m4a";
    session->run();
    ASSERT_EQ(session->status(), static_cast<int>(ExportStatus::completed)) << errorOf(*session);
    session->run();
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::failed));
}

TEST(ExportSession, anEmptyRangeFailsWithASentence) {
    const fixtures::ScratchFolder folder;
    const auto session = makeExportSession(wholeClip(clip()), ExportPreset::highestQuality);
    session->outputPath = folder / "out.mp4";
    session->timeRange = TimeRange{{10, 1}, {0, 1}};
    session->run();
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::failed));
    EXPECT_NE(errorOf(*session), "");
    EXPECT_EQ(entriesOf(folder.path()), 0U);
}

TEST(ExportSession, aSourceThatVanishesBeforeItIsReadIsSaid) {
    const fixtures::ScratchFolder folder;
    std::filesystem::copy_file(clip(), folder / "gone.mov");
    const auto session = makeExportSession(wholeClip(folder / "gone.mov"), ExportPreset::highestQuality);
    std::filesystem::remove(folder / "gone.mov");
    session->outputPath = folder / "out.mp4";
    session->run();
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::failed));
    EXPECT_NE(errorOf(*session).find("gone.mov"), std::string::npos);
    EXPECT_EQ(entriesOf(folder.path()), 0U);
}

TEST(ExportSession, aSourceThatIsCutShortMeanwhileIsNoSilentFreeze) {
    const fixtures::ScratchFolder folder;
    fixtures::ClipSpec spec;
    spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 12.0)};
    spec.container = "mp4";
    spec.muxerOptions = {{"movflags", "faststart"}};
    fixtures::writeClip(spec, folder / "short.mp4");
    std::filesystem::resize_file(folder / "short.mp4", std::filesystem::file_size(folder / "short.mp4") / 2);
    const auto session = makeExportSession(wholeClip(folder / "short.mp4"), ExportPreset::highestQuality);
    session->outputPath = folder / "out.mp4";
    session->run();
    EXPECT_EQ(session->status(), static_cast<int>(ExportStatus::failed));
    EXPECT_NE(errorOf(*session).find("incomplete"), std::string::npos) << errorOf(*session);
    EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(ExportSession, nothingToExportMakesNoSession) {
    EXPECT_EQ(makeExportSession(std::make_shared<Composition>(), ExportPreset::highestQuality), nullptr);
    EXPECT_EQ(makeExportSession(std::make_shared<Composition>(), ExportPreset::audioM4A), nullptr);
}

}  // namespace
}  // namespace korvane
