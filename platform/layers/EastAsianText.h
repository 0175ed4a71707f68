// Chinese and Japanese write the same characters in different shapes, and a text doesn't say which it is.
// Pure.
#pragma once

#include <string>

namespace korvane {

/// Gathers what the texts of a reel tell about it: kana or Hangul anywhere in them decide for all of them.
class EastAsianText {
  public:
    /// \param text  UTF-8; the order of texts doesn't matter.
    void add(const std::string& text);

    /// As fontconfig names it: "ja", "ko", or "zh-cn" where nothing says otherwise.
    const char* language() const { return hasKana_ ? "ja" : hasHangul_ ? "ko" : "zh-cn"; }

  private:
    bool hasKana_ = false;
    bool hasHangul_ = false;
};

}  // namespace korvane
