// A model in the Whisper library, owned. The library's headers stay in the source file.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::whisper {

/// What goes back to the program as "failed": a kind of WhisperProtocol.h and a sentence.
class Failure : public std::runtime_error {
  public:
    Failure(std::string_view kind, const std::string& sentence) : std::runtime_error(sentence), kind_(kind) {}
    std::string_view kind() const { return kind_; }

  private:
    std::string_view kind_;  // of a constant
};

/// What is heard, told while it is being told by the library. Times as in the protocol.
class Listener {
  public:
    virtual ~Listener() = default;
    /// Now and then while the library works, on its threads.
    virtual void alive() = 0;
    virtual void segment(long long start, long long end, double silence) = 0;
    virtual void token(long long end, double chance, std::string_view bytes) = 0;
};

class Model {
  public:
    /// \param useCard  a graphics card that was found usable.
    /// \param onPiece  called for every piece of the file that was read.
    /// \throws Failure
    Model(const std::string& path, int threads, bool useCard, const std::function<void()>& onPiece);
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// \param isStopped  asked often, also on the library's threads.
    /// \return false when it was stopped. \throws Failure
    bool recognise(const std::vector<float>& samples, const std::string& language,
                   const std::function<bool()>& isStopped, Listener& listener);

  private:
    struct Library;
    std::unique_ptr<Library> library_;
};

}  // namespace korvane::whisper
