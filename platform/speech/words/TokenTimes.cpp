#include "platform/speech/words/TokenTimes.h"

#include <algorithm>
#include <optional>

namespace korvane {
namespace {

/// Tokens that share one span of time, and the characters spoken in them; one whose bytes lie in two tokens
/// is in there twice.
struct Share {
    std::int64_t begin = 0;
    std::int64_t end = 0;
    std::vector<std::size_t> characters;

    bool hasLength() const { return end > begin; }
    void append(const Share& other) {
        end = other.end;
        characters.insert(characters.end(), other.characters.begin(), other.characters.end());
    }
};

/// A share for each token that is spoken, one after the other.
std::vector<Share> sharesOf(std::span<const TokenCharacter> characters, std::span<const int> wordOf,
                            std::span<const HeardToken> tokens) {
    std::vector<Share> all(tokens.size());
    for (std::size_t i = 0; i < characters.size(); ++i) {
        for (auto token = characters[i].firstToken; wordOf[i] >= 0 && token <= characters[i].lastToken;
             ++token)
            all[token].characters.push_back(i);
    }
    std::vector<Share> spoken;
    std::optional<std::int64_t> from;
    for (std::size_t token = 0; token < tokens.size(); ++token) {
        if (all[token].characters.empty())
            continue;
        auto& share = spoken.emplace_back(std::move(all[token]));
        share.begin = std::max(tokens[token].begin, from.value_or(tokens[token].begin));
        share.end = std::max(tokens[token].end, share.begin);
        from = share.end;
    }
    return spoken;
}

class Sharing {
  public:
    Sharing(std::vector<Share> shares, std::span<const int> wordOf)
        : shares_(std::move(shares)), wordOf_(wordOf) {}

    /// Every share that has a neighbour with a length gets a part of it.
    std::vector<Share> settled() {
        std::vector<Share> done;
        for (std::size_t i = 0; i < shares_.size(); ++i) {
            auto& share = shares_[i];
            if (share.hasLength() || (done.empty() && i + 1 == shares_.size())) {
                done.push_back(std::move(share));
                continue;
            }
            if (!done.empty() && (sameWord(done.back(), share) || !givesTo(i + 1, share)) &&
                done.back().end == share.begin) {
                done.back().append(share);
                continue;
            }
            if (givesTo(i + 1, share)) {
                share.append(shares_[i + 1]);
                shares_[i + 1] = std::move(share);
                continue;
            }
            done.push_back(std::move(share));
        }
        return done;
    }

  private:
    bool givesTo(std::size_t next, const Share& share) const {
        return next < shares_.size() && shares_[next].begin == share.end;
    }
    bool sameWord(const Share& a, const Share& b) const {
        return wordOf_[a.characters.back()] == wordOf_[b.characters.front()];
    }

    std::vector<Share> shares_;
    const std::span<const int> wordOf_;
};

}  // namespace

std::vector<CharacterTime> timesOfCharacters(std::span<const TokenCharacter> characters,
                                             std::span<const int> wordOf,
                                             std::span<const HeardToken> tokens) {
    std::vector<CharacterTime> times(characters.size());
    std::vector<bool> begun(characters.size(), false);
    for (const auto& share : Sharing(sharesOf(characters, wordOf, tokens), wordOf).settled()) {
        const auto count = std::ssize(share.characters);
        for (std::ptrdiff_t k = 0; k < count; ++k) {
            const auto character = share.characters[static_cast<std::size_t>(k)];
            auto& time = times[character];
            if (!begun[character])
                time.begin = share.begin + (share.end - share.begin) * k / count;
            begun[character] = true;
            time.end = share.begin + (share.end - share.begin) * (k + 1) / count;
        }
    }
    return times;
}

}  // namespace korvane
