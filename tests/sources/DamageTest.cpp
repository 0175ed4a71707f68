// Damaged sources: every run ends with a reel that reads back, or with a sentence and nothing left behind.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <filesystem>
#include <string>

#include "editor/ExportError.h"
#include "editor/VideoEditor.h"
#include "platform/ffmpeg/MediaError.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/FileSurgery.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane::sources {
namespace {

namespace fs = std::filesystem;
using fixtures::ClipSpec;
using fixtures::VideoSpec;

class Damage : public testing::Test {
  protected:
    void write(const std::string& name, const std::string& container,
               const std::map<std::string, std::string>& muxerOptions = {}) {
        ClipSpec spec;
        spec.video.push_back(VideoSpec::constantRate({30, 1}, 2.0));
        spec.video[0].bFrames = 2;
        spec.audio.push_back({});
        spec.audio[0].durationSeconds = 2.0;
        spec.container = container;
        spec.muxerOptions = muxerOptions;
        fixtures::writeClip(spec, folder_ / name);
    }

    /// \return whether a reel was made. Whatever happens, nothing but a complete reel is left.
    bool run(const fs::path& source) {
        const fs::path reel = folder_ / "out" / "reel.mp4";
        fs::remove_all(reel.parent_path());
        fs::create_directory(reel.parent_path());
        CollectingMainQueue queue;
        try {
            VideoEditor(queue, silentLog())
                .exportVideo(source, {{"one", 0.2, 0.4}, {"two", 1.5, 1.8}}, SubtitleSettings(), reel,
                             [](double) {}, {});
        } catch (const MediaError& error) {
            sentence_ = error.what();
            EXPECT_GT(sentence_.size(), 10U);
            EXPECT_TRUE(fs::is_empty(reel.parent_path())) << error.what();
            return false;
        } catch (const ExportError& error) {
            EXPECT_GT(std::string(error.what()).size(), 10U);
            EXPECT_TRUE(fs::is_empty(reel.parent_path())) << error.what();
            return false;
        }
        int pictures = 0;
        fixtures::readPictures(reel, [&](const fixtures::DecodedPicture&) { return ++pictures > 0; });
        EXPECT_GT(pictures, 0);
        return true;
    }

    const fixtures::ScratchFolder folder_;
    std::string sentence_;  ///< of the last run that failed to read or write
};

TEST_F(Damage, aFileWithoutItsEndHasNoIndexAndIsRefused) {
    write("clip.mov", "mov");
    const auto size = fs::file_size(folder_ / "clip.mov");
    for (const double share : {0.0, 0.001, 0.01, 0.3, 0.6, 0.9}) {
        fs::copy_file(folder_ / "clip.mov", folder_ / "cut.mov", fs::copy_options::overwrite_existing);
        fixtures::truncateFile(folder_ / "cut.mov",
                               static_cast<std::uintmax_t>(static_cast<double>(size) * share));
        EXPECT_FALSE(run(folder_ / "cut.mov")) << share;
    }
}

TEST_F(Damage, filesThatKeepTheirIndexInFrontEndInOrderWhereverTheyAreCut) {
    write("clip.mp4", "mp4", {{"movflags", "faststart"}});
    write("clip.mkv", "matroska");
    write("clip.ts", "mpegts");
    for (const char* name : {"clip.mp4", "clip.mkv", "clip.ts"}) {
        const auto size = fs::file_size(folder_ / name);
        for (int step = 1; step < 8; ++step) {
            fs::copy_file(folder_ / name, folder_ / "cut", fs::copy_options::overwrite_existing);
            fixtures::truncateFile(folder_ / "cut", size * static_cast<unsigned>(step) / 8);
            run(folder_ / "cut");
        }
        EXPECT_TRUE(run(folder_ / name)) << name;
    }
}

TEST_F(Damage, flippedBitsNeverLeaveHalfAReel) {
    for (const auto& [name, container] : {std::pair{"clip.mov", "mov"}, std::pair{"clip.mkv", "matroska"}}) {
        write(name, container);
        for (std::uint32_t seed = 1; seed <= 12; ++seed) {
            fs::copy_file(folder_ / name, folder_ / "flipped", fs::copy_options::overwrite_existing);
            fixtures::flipBits(folder_ / "flipped", seed, static_cast<int>(seed) * 3);
            run(folder_ / "flipped");
        }
    }
}

TEST_F(Damage, anEncryptedFileIsCalledThatAndMakesNoReel) {
    write("locked.mp4", "mp4",
          {{"encryption_scheme", "cenc-aes-ctr"},
           {"encryption_key", "00112233445566778899aabbccddeeff"},
           {"encryption_kid", "00112233445566778899aabbccddee01"}});
    EXPECT_FALSE(run(folder_ / "locked.mp4"));
    EXPECT_NE(sentence_.find("is encrypted"), std::string::npos) << sentence_;
}

}  // namespace
}  // namespace korvane::sources

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
