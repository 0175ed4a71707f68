#include "model/FontCatalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLocale>
#include <map>
#include <set>
#include <thread>

#include "platform/fonts/InstalledFontManager.h"

namespace korvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Weight = SubtitleSettings::Weight;

/// A desktop whose fonts a test writes down.
struct FakeFonts : FontManager {
    std::vector<std::string> families;
    std::map<std::string, std::vector<FontMember>> members;
    std::set<std::string> broken;
    mutable std::vector<std::string> opened;
    mutable std::set<double> sizes;

    FakeFonts& with(const std::string& family, std::vector<FontMember> faces) {
        families.push_back(family);
        members[family] = std::move(faces);
        return *this;
    }
    std::vector<std::string> availableFontFamilies() const override { return families; }
    std::optional<std::vector<FontMember>> availableMembers(const std::string& family) const override {
        const auto found = members.find(family);
        return found == members.end() ? std::nullopt : std::optional(found->second);
    }
    bool canOpen(const std::string& fontName, double size) const override {
        opened.push_back(fontName);
        sizes.insert(size);
        return !broken.contains(fontName);
    }
};

FontMember member(const std::string& fontName, const std::string& faceName = "Regular", int weight = 5) {
    return {fontName, faceName, weight};
}

TEST(FontCatalogue, aFamilyIsListedWhenOneOfItsFacesCanBeOpened) {
    FakeFonts fonts;
    fonts.with("Whole", {member("Whole-Regular")})
        .with("Half", {member("Half-Broken"), member("Half-Bold")})
        .with("Broken", {member("Broken-Regular")})
        .with("Empty", {});
    fonts.families.push_back("Without a list");
    fonts.broken = {"Half-Broken", "Broken-Regular"};
    EXPECT_THAT(usableFontFamilies(fonts), ElementsAre("Half", "Whole"));
    EXPECT_THAT(fonts.sizes, ElementsAre(12.0));
}

TEST(FontCatalogue, aFamilyWithOnlyDottedNamesIsNotListed) {
    FakeFonts fonts;
    fonts.with("Hidden", {member(".Hidden-Regular"), member(".Hidden-Bold")})
        .with("Mixed", {member(".Mixed-Regular"), member("Mixed-Bold")});
    EXPECT_THAT(usableFontFamilies(fonts), ElementsAre("Mixed"));
    EXPECT_THAT(fonts.opened, ElementsAre("Mixed-Bold")) << "dotted names are not even opened";
    EXPECT_THAT(usableWeights(fonts, "Hidden"), IsEmpty());
}

TEST(FontCatalogue, theSearchStopsAtAFamilysFirstGoodFace) {
    FakeFonts fonts;
    fonts.with("A", {member("A-Broken"), member("A-Good"), member("A-Never")}).broken = {"A-Broken"};
    usableFontFamilies(fonts);
    EXPECT_THAT(fonts.opened, ElementsAre("A-Broken", "A-Good"));
}

TEST(FontCatalogue, forAFamilyOnlyTheFontNameHasToBeThere) {
    FakeFonts fonts;
    fonts.with("Nameless", {{"Nameless-Regular", std::nullopt, std::nullopt}})
        .with("Lacking", {{std::nullopt, "Regular", 5}});
    EXPECT_THAT(usableFontFamilies(fonts), ElementsAre("Nameless"));
    EXPECT_THAT(usableWeights(fonts, "Nameless"), IsEmpty()) << "but a weight needs all three";
}

TEST(FontCatalogue, familiesAreSortedAsIfAllWereLowerCase) {
    FakeFonts fonts;
    for (const char* family : {"Zapfino", "beta", "Alpha", "gamma", "Delta", "alphabet"})
        fonts.with(family, {member(family)});
    EXPECT_THAT(usableFontFamilies(fonts),
                ElementsAre("Alpha", "alphabet", "beta", "Delta", "gamma", "Zapfino"));
}

TEST(FontCatalogue, familiesAreSortedAsTheUsersLanguageDoes) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    FakeFonts fonts;
    for (const char* family : {"Zapfino", "Ärmel", "Azur", "Arm"})
        fonts.with(family, {member(family)});
    const auto sorted = usableFontFamilies(fonts);
    QLocale::setDefault(before);
    EXPECT_THAT(sorted, ElementsAre("Arm", "Ärmel", "Azur", "Zapfino"));
}

TEST(FontCatalogue, nothingIsListedOnceOnly) {
    FakeFonts fonts;
    fonts.with("Twice", {member("Twice-Bold", "Bold", 9), member("Twice-Bold2", "Bold", 9)})
        .families.push_back("Twice");
    EXPECT_THAT(usableFontFamilies(fonts), ElementsAre("Twice", "Twice"));
    EXPECT_THAT(usableWeights(fonts, "Twice"),
                ElementsAre(Weight{"Bold", "Twice-Bold"}, Weight{"Bold", "Twice-Bold2"}));
}

TEST(FontCatalogue, facesComeLightestFirst) {
    FakeFonts fonts;
    fonts.with("F", {member("F-Black", "Black", 9), member("F-Regular", "Regular", 5),
                     member("F-Light", "Light", 3)});
    EXPECT_THAT(
        usableWeights(fonts, "F"),
        ElementsAre(Weight{"Light", "F-Light"}, Weight{"Regular", "F-Regular"}, Weight{"Black", "F-Black"}));
}

TEST(FontCatalogue, facesOfOneWeightStayInTheDesktopsOrder) {
    FakeFonts fonts;
    fonts.with("F", {member("F-BoldItalic", "Bold Italic", 9), member("F-Bold", "Bold", 9),
                     member("F-Thin", "Thin", 2)});
    EXPECT_EQ(usableWeights(fonts, "F").back(), (Weight{"Bold", "F-Bold"}));
}

TEST(FontCatalogue, aFaceWithoutAWordOfItsOwnIsRegular) {
    FakeFonts fonts;
    fonts.with("F", {member("F", "")});
    EXPECT_THAT(usableWeights(fonts, "F"), ElementsAre(Weight{"Regular", "F"}));
}

TEST(FontCatalogue, facesThatLackSomethingOrCannotBeOpenedAreLeftOut) {
    FakeFonts fonts;
    fonts.with("F", {{std::nullopt, "Bold", 9},
                     {"F-NoFace", std::nullopt, 9},
                     {"F-NoWeight", "Bold", std::nullopt},
                     member(".F-Dotted"),
                     member("F-Broken"),
                     member("F-Good")});
    fonts.broken = {"F-Broken"};
    EXPECT_THAT(usableWeights(fonts, "F"), ElementsAre(Weight{"Regular", "F-Good"}));
}

TEST(FontCatalogue, whatIsNoFamilyHasNoWeights) {
    EXPECT_THAT(usableWeights(FakeFonts(), "Nowhere"), IsEmpty());
    EXPECT_THAT(SubtitleSettings::weights("No such family, ever"), IsEmpty());
    EXPECT_THAT(SubtitleSettings::weights(""), IsEmpty());
}

TEST(FontCatalogue, weightsAreAskedForAnewEachTime) {
    FakeFonts fonts;
    fonts.with("F", {member("F-Regular"), member("F-Bold", "Bold", 9)});
    EXPECT_EQ(usableWeights(fonts, "F").size(), 2U);
    fonts.broken = {"F-Bold"};
    EXPECT_EQ(usableWeights(fonts, "F").size(), 1U);
}

TEST(InstalledFonts, theFamiliesAreMadeOnceForAllThreads) {
    const std::vector<std::string>* seen[2] = {};
    {
        const std::jthread one([&] { seen[0] = &SubtitleSettings::fontFamilies(); });
        const std::jthread other([&] { seen[1] = &SubtitleSettings::fontFamilies(); });
    }
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0], &SubtitleSettings::fontFamilies());
    EXPECT_FALSE(seen[0]->empty()) << "tests need an installed font";
}

TEST(InstalledFonts, everyWeightIsFoundAgainByTheNameThatIsStored) {
    const auto& manager = InstalledFontManager::ofThisProcess();
    for (const auto& family : SubtitleSettings::fontFamilies()) {
        const auto weights = SubtitleSettings::weights(family);
        EXPECT_FALSE(weights.empty()) << family;
        for (const auto& weight : weights) {
            const auto* face = manager.lookup().exactFace(weight.postscript);
            ASSERT_NE(face, nullptr) << weight.postscript;
            EXPECT_EQ(face->family, family);
            EXPECT_EQ(face->style.empty() ? "Regular" : face->style, weight.name);
        }
    }
}

}  // namespace
}  // namespace korvane
