// The style of the burned-in subtitles: the one thing that is remembered between runs. A plain value.
#pragma once

#include <QByteArray>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/defaults/UserDefaults.h"
#include "platform/layers/Color.h"

namespace korvane {

/// Why a document is not a style, to be read after a file's name and a colon, e.g. "“fontSize” is missing".
class SubtitleSettingsError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Nothing checks ranges: what a person or a document says is kept. Sizes count in points of the 1080 x 1920
/// picture, colour components go from 0 to 1 and are always opaque.
struct SubtitleSettings {
    /// One face of a family to choose from.
    struct Weight {
        std::string name;        ///< e.g. "Bold"
        std::string postscript;  ///< for `fontPostscriptName`, e.g. "Inter-Bold"
        friend bool operator==(const Weight&, const Weight&) = default;
    };

    std::string fontFamilyName = "Helvetica Neue";
    std::string fontPostscriptName = "HelveticaNeue-Bold";
    double fontSize = 72.0;
    double textColorR = 1.0;
    double textColorG = 1.0;
    double textColorB = 1.0;
    bool hasShadow = true;
    double shadowColorR = 0.0;
    double shadowColorG = 0.0;
    double shadowColorB = 0.0;
    double shadowRadius = 8.0;
    double verticalPosition = 0.85;
    bool hasPopAnimation = true;

    friend bool operator==(const SubtitleSettings&, const SubtitleSettings&) = default;

    Color textColor() const { return {textColorR, textColorG, textColorB, 1.0}; }
    /// Drops the colour's opacity; a colour that has no RGB form is stored as white.
    void setTextColor(const Color& color) { extract(color, textColorR, textColorG, textColorB); }
    Color shadowColor() const { return {shadowColorR, shadowColorG, shadowColorB, 1.0}; }
    /// As setTextColor().
    void setShadowColor(const Color& color) { extract(color, shadowColorR, shadowColorG, shadowColorB); }

    static constexpr const char* defaultsKey = "subtitleSettings_v1";

    /// Stores the style. Nothing happens when it can't be encoded.
    /// \return whether it was stored; nobody has to look.
    bool save(UserDefaults& store) const;
    /// The stored style, or the default one when there is none or it can't be decoded as a whole. What is
    /// stored stays as it is.
    static SubtitleSettings load(const UserDefaults& store);

    /// One object with a key for each field; none when a number is not finite.
    std::optional<QByteArray> toJson() const;
    /// Every field must be there with the right type; other keys are ignored.
    /// \throws SubtitleSettingsError  about the first field, in their order, that is not so.
    static SubtitleSettings fromJson(const QByteArray& json);

    /// The families that can be written with, in the order of the user's language. The first call opens a
    /// face of each, which takes long where there are many; the list is then kept for the life of the
    /// process. Any thread.
    static const std::vector<std::string>& fontFamilies();
    /// The faces of a family that can be written with, lightest first; empty when there is no such family.
    /// Opens each, each time. Any thread.
    static std::vector<Weight> weights(const std::string& family);

  private:
    static void extract(const Color& color, double& red, double& green, double& blue);
};

}  // namespace korvane
