// A style with its owner and its editor, as the screen has them, and fonts that a test makes up.
#pragma once

#include <QCoreApplication>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/SubtitleSettings.h"
#include "ui/style/StyleEditor.h"

namespace korvane {

inline FontFace madeUpFace(std::string family, std::string style, std::string name) {
    FontFace face;
    face.family = std::move(family);
    face.style = std::move(style);
    face.postScriptName = std::move(name);
    return face;
}

/// Keeps the one value that is stored.
struct OneValue : UserDefaults {
    std::optional<QByteArray> value;
    std::optional<QByteArray> data(const std::string&) const override { return value; }
    bool setData(const QByteArray& data, const std::string&) override {
        value = data;
        return true;
    }
    bool remove(const std::string&) override {
        value.reset();
        return true;
    }
};

/// Families with weights; anything that is not there is drawn with "Inter Bold".
struct MadeUpFonts {
    std::map<std::string, std::vector<SubtitleSettings::Weight>> families;
    std::map<std::string, FontFace> faces;
    FontFace substitute = madeUpFace("Inter", "Bold", "Inter-Bold");
    int weightsAsked = 0;

    MadeUpFonts& with(const std::string& family, const std::vector<SubtitleSettings::Weight>& weights) {
        families[family] = weights;
        for (const auto& weight : weights)
            faces[weight.postscript] = madeUpFace(family, weight.name, weight.postscript);
        return *this;
    }
    static MadeUpFonts few() {
        MadeUpFonts fonts;
        fonts.with("Inter", {{"Light", "Inter-Light"}, {"Regular", "Inter-Regular"}, {"Bold", "Inter-Bold"}})
            .with("Serif", {{"Italic", "Serif-Italic"}, {"Regular", "Serif-Regular"}})
            .with("Bare", {});
        return fonts;
    }
    StyleFonts asked() {
        return {[this] {
                    std::vector<std::string> names;
                    for (const auto& [name, weights] : families)
                        names.push_back(name);
                    return names;
                },
                [this](const std::string& family) {
                    ++weightsAsked;
                    const auto found = families.find(family);
                    return found == families.end() ? std::vector<SubtitleSettings::Weight>() : found->second;
                },
                [this](const std::string& postscript) -> const FontFace& {
                    const auto found = faces.find(postscript);
                    return found == faces.end() ? substitute : found->second;
                },
                [](const std::string& family) { return !family.starts_with("Symbol"); }};
    }
};

/// Owns the style and saves each change, as the screen does.
struct EditedStyle {
    explicit EditedStyle(MadeUpFonts madeUp = MadeUpFonts::few(), SubtitleSettings start = {})
        : fonts(std::move(madeUp)), settings(std::move(start)) {}
    /// With the fonts of this desktop.
    explicit EditedStyle(StyleFonts real) : editorsFonts(std::move(real)) {}

    MadeUpFonts fonts;
    SubtitleSettings settings;
    StyleFonts editorsFonts = fonts.asked();
    OneValue store;
    int writes = 0;
    StyleEditor editor{[this]() -> const SubtitleSettings& { return settings; },
                       [this](const SubtitleSettings& changed) { set(changed); }, editorsFonts};

    void set(const SubtitleSettings& changed) {
        settings = changed;
        ++writes;
        settings.save(store);
        editor.settingsChanged();
    }
    void readFonts() {
        editor.prefetchFonts();
        while (editor.fontFamilies().isEmpty())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
};

}  // namespace korvane
