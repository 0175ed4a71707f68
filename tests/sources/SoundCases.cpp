// Sample rates, channels, tracks and codecs of sound.

#include "tests/sources/SourceCase.h"

namespace korvane::sources {

std::vector<SourceCase> soundCases() {
    std::vector<SourceCase> cases;
    for (const int rate : {8'000, 11'025, 16'000, 22'050, 32'000, 44'100, 88'200, 96'000}) {
        cases.push_back(plainCase("rate" + std::to_string(rate)));
        cases.back().clip.audio[0].rateHz = rate;
        cases.back().clip.audio[0].codec = "pcm_s16le";
    }
    cases.push_back(plainCase("aac44100"));
    cases.back().clip.audio[0].rateHz = 44'100;
    cases.push_back(plainCase("aac96000"));
    cases.back().clip.audio[0].rateHz = 96'000;
    for (const int channels : {2, 3, 4, 5, 6, 8}) {
        cases.push_back(plainCase("channels" + std::to_string(channels)));
        cases.back().clip.audio[0].channels = channels;
        cases.back().outputChannels = 2;
    }
    for (const char* codec : {"pcm_u8", "pcm_s32le", "pcm_f32le", "alac", "ac3", "libmp3lame"}) {
        cases.push_back(plainCase(std::string("codec_") + codec));
        cases.back().clip.audio[0].codec = codec;
        // Without an edit list for its delay, MP3 in QuickTime files is what its decoder makes of it.
        if (std::string(codec) == "libmp3lame")
            cases.back().soundToleranceSamples = 3.0;
    }
    cases.push_back(plainCase("twoTracks"));
    cases.back().clip.audio.push_back(cases.back().clip.audio[0]);
    cases.back().clip.audio[1].seed = 100;
    cases.push_back(plainCase("gap"));
    cases.back().clip.audio[0].gapsSeconds = {{1.9, 2.2}};
    cases.push_back(plainCase("noSound"));
    cases.back().clip.audio.clear();
    return cases;
}

}  // namespace korvane::sources
