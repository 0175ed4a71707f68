// What the program and its Whisper worker say to each other over two pipes. Standard library only: both are
// built from this file, the worker perhaps against another C library.
//
// A message is a line of words parted by single spaces; its last word may be a count of bytes that follow
// the line. Numbers are decimal, samples 32-bit floats as the machine has them, mono, 16 kHz; times
// hundredths of a second from the first sample of the request, as the library counts.
//
//   to the worker                          from the worker
//   load THREADS BYTES  path               hello VERSION                  once, when it has started
//   voices BYTES  path                     looking                        for a graphics card, whose driver
//                                                                         may end or stop it
//                                          loading BACKEND                after load, and while it reads
//                                          loaded BACKEND                 after load and voices: CPU, or the
//                                                                         name of a card
//   recognise ID LANGUAGE BYTES  samples   alive ID                       now and then while it works
//                                          segment ID START END SILENCE   chance that nobody speaks, 0 to 1
//                                          token END CHANCE BYTES  text   of the last segment
//   find ID BYTES  samples                 chances ID BYTES  chances      that somebody speaks, a byte for
//                                                                         each of voiceFrame samples, 255 for
//                                                                         1
//                                          done ID                        the end of a request,
//   stop ID                                stopped ID                     or this,
//                                          failed KIND BYTES  sentence    or this, also after load, voices
//
// "voices" loads the model that "find" needs, which tells voices from other sounds.
// One request at a time. The worker ends when its input does, whatever it is doing.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::whisper {

inline constexpr int protocolVersion = 3;
inline constexpr int rateHz = 16000;
inline constexpr std::size_t longestLine = 200;  ///< without the line feed
inline constexpr std::size_t longestText = 4096;
inline constexpr std::size_t longestPath = 64 * 1024;
inline constexpr std::int64_t longestSound = 60 * rateHz;  ///< samples in a request
inline constexpr std::int64_t voiceFrame = 512;            ///< samples
static_assert(longestSound / voiceFrame < static_cast<std::int64_t>(longestText));

inline constexpr std::string_view processor = "CPU";  ///< the backend that is no graphics card

/// What failed: the model file, the memory, the library, all of it as it doesn't run on this machine, or what
/// has to do with telling voices apart.
namespace failure {
inline constexpr std::string_view voices = "voices";
inline constexpr std::string_view model = "model";
inline constexpr std::string_view memory = "memory";
inline constexpr std::string_view engine = "engine";
inline constexpr std::string_view machine = "machine";
inline constexpr std::string_view language = "language";
}  // namespace failure

/// The words of a line, read one after the other. Anything unexpected makes the whole line void.
class Line {
  public:
    explicit Line(std::string_view line) : rest_(line) {}

    std::string_view word() {
        const auto space = rest_.find(' ');
        const auto first = rest_.substr(0, space);
        rest_ = space == std::string_view::npos ? std::string_view() : rest_.substr(space + 1);
        if (first.empty())
            isGood_ = false;
        return first;
    }
    template <class Number>
    Number number(Number least, Number most) {
        const auto text = word();
        Number value = least;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size() || !(value >= least && value <= most)) {
            isGood_ = false;
            return least;
        }
        return value;
    }
    /// Whether all that was asked for was there, and nothing is left.
    bool isComplete() const { return isGood_ && rest_.empty(); }

  private:
    std::string_view rest_;
    bool isGood_ = true;
};

/// A line of these words, line feed included.
template <class... Words>
std::string makeLine(std::string_view verb, const Words&... words) {
    std::string line(verb);
    const auto add = [&line](const auto& word) {
        line += ' ';
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(word)>>) {
            char digits[40];
            line.append(digits, std::to_chars(digits, digits + sizeof digits, word).ptr);
        } else {
            line += word;
        }
    };
    (add(words), ...);
    return line + '\n';
}

}  // namespace korvane::whisper
