// The library's model that tells voices from other sounds, owned. The library's headers stay in the source
// file.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace korvane::whisper {

class Voices {
  public:
    /// \throws Failure of the kind "voices" or "memory"
    explicit Voices(const std::string& path);
    ~Voices();
    Voices(const Voices&) = delete;
    Voices& operator=(const Voices&) = delete;

    /// \return the chance that somebody speaks for each voiceFrame samples, as the protocol has it: a byte
    /// each. Can't be interrupted; about 0.1 s for 15 s of sound.
    /// \throws Failure likewise
    std::string chancesIn(const std::vector<float>& samples);

  private:
    struct Library;
    std::unique_ptr<Library> library_;
};

}  // namespace korvane::whisper
