#include "model/SubtitleSettings.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <limits>

#include "platform/defaults/MemoryUserDefaults.h"

namespace korvane {
namespace {

const char* const kKeys[] = {"fontFamilyName", "fontPostscriptName", "fontSize",     "textColorR",
                             "textColorG",     "textColorB",         "hasShadow",    "shadowColorR",
                             "shadowColorG",   "shadowColorB",       "shadowRadius", "verticalPosition",
                             "hasPopAnimation"};

SubtitleSettings unusual() {
    SubtitleSettings settings;
    settings.fontFamilyName = "Ünusual \"Font\" 日本";
    settings.fontPostscriptName = "Unusual-Black";
    settings.fontSize = 63.7;
    settings.textColorR = 0.1;
    settings.textColorG = 1.0 / 3.0;
    settings.textColorB = 5e-324;
    settings.hasShadow = false;
    settings.shadowColorR = 0.7;
    settings.shadowColorG = 0.8;
    settings.shadowColorB = 0.9;
    settings.shadowRadius = 31.999999999999996;
    settings.verticalPosition = 0.0;
    settings.hasPopAnimation = false;
    return settings;
}

QJsonObject objectOf(const SubtitleSettings& settings) {
    return QJsonDocument::fromJson(settings.toJson().value()).object();
}

QByteArray bytesOf(const QJsonObject& object) {
    return QJsonDocument(object).toJson();
}

std::string reasonFor(const QByteArray& json) {
    try {
        SubtitleSettings::fromJson(json);
    } catch (const SubtitleSettingsError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(SubtitleSettings, theDefaultsAreTheProductsOwn) {
    const SubtitleSettings settings;
    EXPECT_EQ(settings.fontFamilyName, "Helvetica Neue");
    EXPECT_EQ(settings.fontPostscriptName, "HelveticaNeue-Bold");
    EXPECT_EQ(settings.fontSize, 72.0);
    EXPECT_EQ(settings.textColor(), Color::white());
    EXPECT_TRUE(settings.hasShadow);
    EXPECT_EQ(settings.shadowColor(), Color::black());
    EXPECT_EQ(settings.shadowRadius, 8.0);
    EXPECT_EQ(settings.verticalPosition, 0.85);
    EXPECT_TRUE(settings.hasPopAnimation);
}

TEST(SubtitleSettings, aFreshStoreLoadsTheDefaults) {
    EXPECT_EQ(SubtitleSettings::load(MemoryUserDefaults()), SubtitleSettings());
}

TEST(SubtitleSettings, whatIsSavedIsLoadedExactly) {
    MemoryUserDefaults store;
    EXPECT_TRUE(unusual().save(store));
    EXPECT_EQ(SubtitleSettings::load(store), unusual());
    EXPECT_TRUE(store.data("subtitleSettings_v1"));
}

TEST(SubtitleSettings, aSecondSaveReplacesTheFirst) {
    MemoryUserDefaults store;
    unusual().save(store);
    SubtitleSettings().save(store);
    EXPECT_EQ(SubtitleSettings::load(store), SubtitleSettings());
}

TEST(SubtitleSettings, theDocumentHasExactlyTheThirteenKeysWithTheirTypes) {
    const auto object = objectOf(unusual());
    EXPECT_EQ(object.size(), 13);
    for (const char* key : kKeys)
        EXPECT_TRUE(object.contains(QLatin1String(key))) << key;
    EXPECT_TRUE(object.value(QLatin1String("fontFamilyName")).isString());
    EXPECT_TRUE(object.value(QLatin1String("fontSize")).isDouble());
    EXPECT_TRUE(object.value(QLatin1String("hasShadow")).isBool());
}

TEST(SubtitleSettings, aDocumentThatLacksOneKeyLoadsAsAllDefaults) {
    for (const char* key : kKeys) {
        auto object = objectOf(unusual());
        object.remove(QLatin1String(key));
        MemoryUserDefaults store;
        store.setData(bytesOf(object), SubtitleSettings::defaultsKey);
        EXPECT_EQ(SubtitleSettings::load(store), SubtitleSettings()) << key;
        EXPECT_EQ(store.data(SubtitleSettings::defaultsKey), bytesOf(object)) << "what is stored stays";
        EXPECT_EQ(reasonFor(bytesOf(object)), "“" + std::string(key) + "” is missing");
    }
}

TEST(SubtitleSettings, aWrongTypeFailsAsAWhole) {
    for (const char* key : kKeys) {
        auto object = objectOf(unusual());
        object.insert(QLatin1String(key), QJsonValue(QJsonValue::Null));
        EXPECT_NE(reasonFor(bytesOf(object)).find(key), std::string::npos);
    }
    const auto with = [](const char* key, const QJsonValue& value) {
        auto object = objectOf(unusual());
        object.insert(QLatin1String(key), value);
        return reasonFor(bytesOf(object));
    };
    EXPECT_EQ(with("fontSize", QStringLiteral("72")), "“fontSize” must be a number, not a text");
    EXPECT_EQ(with("hasShadow", 1), "“hasShadow” must be true or false, not a number");
    EXPECT_EQ(with("textColorR", true), "“textColorR” must be a number, not true or false");
    EXPECT_EQ(with("fontFamilyName", QJsonObject()), "“fontFamilyName” must be a text, not an object");
}

TEST(SubtitleSettings, theFirstFieldThatIsWrongIsNamed) {
    EXPECT_EQ(reasonFor("{}"), "“fontFamilyName” is missing");
    EXPECT_EQ(reasonFor(R"({"fontFamilyName": "A", "fontSize": "x"})"), "“fontPostscriptName” is missing");
}

TEST(SubtitleSettings, otherKeysAreIgnored) {
    auto object = objectOf(unusual());
    object.insert(QLatin1String("textColorA"), 0.5);
    EXPECT_EQ(SubtitleSettings::fromJson(bytesOf(object)), unusual());
}

TEST(SubtitleSettings, wholeNumbersAreNumbersToo) {
    auto object = objectOf(unusual());
    object.insert(QLatin1String("fontSize"), 72);
    EXPECT_EQ(SubtitleSettings::fromJson(bytesOf(object)).fontSize, 72.0);
}

TEST(SubtitleSettings, whatIsNoObjectIsRefusedWithAReason) {
    for (const char* text : {"", "{", "not json", "\xff\xfe", "{\"fontSize\": 1e}"})
        EXPECT_EQ(reasonFor(text).find("the document is not JSON"), 0U) << text;
    for (const char* text : {"[]", "[1, 2]"})
        EXPECT_EQ(reasonFor(text), "the document must be one JSON object with a key for each setting");
    auto huge = bytesOf(objectOf(unusual()));
    huge.replace("63.7", "1e999");
    EXPECT_NE(reasonFor(huge), "accepted");
}

TEST(SubtitleSettings, corruptDataLoadsAsTheDefaultsAndStays) {
    MemoryUserDefaults store;
    store.setData("}corrupt{", SubtitleSettings::defaultsKey);
    EXPECT_EQ(SubtitleSettings::load(store), SubtitleSettings());
    EXPECT_EQ(store.data(SubtitleSettings::defaultsKey), QByteArray("}corrupt{"));
}

TEST(SubtitleSettings, aNumberThatIsNoneCannotBeSavedAndLeavesTheStoreAlone) {
    MemoryUserDefaults store;
    unusual().save(store);
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        auto settings = unusual();
        settings.shadowRadius = bad;
        EXPECT_EQ(settings.toJson(), std::nullopt);
        EXPECT_FALSE(settings.save(store));
        EXPECT_EQ(SubtitleSettings::load(store), unusual());
    }
}

TEST(SubtitleSettings, aColoursOpacityIsDropped) {
    SubtitleSettings settings;
    settings.setTextColor({0.25, 0.5, 0.75, 0.5});
    EXPECT_EQ(settings.textColorR, 0.25);
    EXPECT_EQ(settings.textColorG, 0.5);
    EXPECT_EQ(settings.textColorB, 0.75);
    EXPECT_EQ(settings.textColor(), (Color{0.25, 0.5, 0.75, 1.0}));
    settings.setShadowColor({0.1, 0.2, 0.3, 0.0});
    EXPECT_EQ(settings.shadowColor(), (Color{0.1, 0.2, 0.3, 1.0}));
}

TEST(SubtitleSettings, aColourThatHasNoRgbFormIsStoredAsWhite) {
    SubtitleSettings settings;
    settings.setShadowColor({0.1, std::numeric_limits<double>::quiet_NaN(), 0.3, 1.0});
    EXPECT_EQ(settings.shadowColor(), Color::white());
}

TEST(SubtitleSettings, everyFieldCountsForEquality) {
    const SubtitleSettings settings;
    for (const auto& change : std::initializer_list<void (*)(SubtitleSettings&)>{
             [](auto& s) { s.fontFamilyName = "x"; }, [](auto& s) { s.fontPostscriptName = "x"; },
             [](auto& s) { s.fontSize = 1; }, [](auto& s) { s.textColorR = 0.5; },
             [](auto& s) { s.textColorG = 0.5; }, [](auto& s) { s.textColorB = 0.5; },
             [](auto& s) { s.hasShadow = false; }, [](auto& s) { s.shadowColorR = 0.5; },
             [](auto& s) { s.shadowColorG = 0.5; }, [](auto& s) { s.shadowColorB = 0.5; },
             [](auto& s) { s.shadowRadius = 9; }, [](auto& s) { s.verticalPosition = 0.5; },
             [](auto& s) { s.hasPopAnimation = false; }}) {
        auto changed = settings;
        change(changed);
        EXPECT_NE(changed, settings);
        EXPECT_EQ(SubtitleSettings::fromJson(changed.toJson().value()), changed);
    }
}

}  // namespace
}  // namespace korvane
