#include "model/Language.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace korvane {
namespace {

TEST(Language, theCatalogueHasNineInTheirOrder) {
    const auto& languages = languageCatalogue();
    const std::vector<Language> expected{{"ru-RU", "\U0001F1F7\U0001F1FA\u0020\u0020Russian"},
                                         {"en-US", "\U0001F1FA\U0001F1F8\u0020\u0020English (US)"},
                                         {"uk-UA", "\U0001F1FA\U0001F1E6\u0020\u0020Ukrainian"},
                                         {"fr-FR", "\U0001F1EB\U0001F1F7\u0020\u0020French"},
                                         {"de-DE", "\U0001F1E9\U0001F1EA\u0020\u0020German"},
                                         {"es-ES", "\U0001F1EA\U0001F1F8\u0020\u0020Spanish"},
                                         {"it-IT", "\U0001F1EE\U0001F1F9\u0020\u0020Italian"},
                                         {"zh-CN", "\U0001F1E8\U0001F1F3\u0020\u0020Chinese"},
                                         {"ja-JP", "\U0001F1EF\U0001F1F5\u0020\u0020Japanese"}};
    EXPECT_EQ(languages, expected);
    std::vector<std::size_t> bytes;
    for (const auto& language : languages)
        bytes.push_back(language.name.size());
    EXPECT_EQ(bytes, (std::vector<std::size_t>{17, 22, 19, 16, 16, 17, 17, 17, 18}));
}

TEST(Language, theFirstOneIsRussian) {
    EXPECT_EQ(languageCatalogue().front().id, "ru-RU");
    EXPECT_EQ(languageCatalogue().front().name, "🇷🇺  Russian");
}

TEST(Language, theCatalogueIsMadeOnce) {
    EXPECT_EQ(&languageCatalogue(), &languageCatalogue());
}

TEST(Language, isEqualOnlyInBothFields) {
    const Language english("en-US", "English");
    EXPECT_EQ(english, Language("en-US", "English"));
    EXPECT_NE(english, Language("en-US", "Anglais"));
    EXPECT_NE(english, Language("en-GB", "English"));
}

TEST(Language, hashesBothFieldsInTheirOrder) {
    const std::hash<Language> hash;
    EXPECT_EQ(hash({"en-US", "English"}), hash({"en-US", "English"}));
    EXPECT_NE(hash({"en-US", "English"}), hash({"en-US", "Anglais"}));
    EXPECT_NE(hash({"en-US", "English"}), hash({"en-GB", "English"}));
    EXPECT_NE(hash({"a", "b"}), hash({"b", "a"}));
    const std::unordered_set<Language> set(languageCatalogue().begin(), languageCatalogue().end());
    EXPECT_EQ(set.size(), 9U);
}

TEST(Language, itsLocaleFollowsItsIdentifier) {
    Language language("en-US", "English");
    EXPECT_EQ(language.locale(), Locale{"en-US"});
    language.id = "de-DE";
    EXPECT_EQ(language.locale(), Locale{"de-DE"});
}

}  // namespace
}  // namespace korvane
