#include "platform/speech/SpeechRecognizerRegistry.h"

#include <gtest/gtest.h>

#include "platform/speech/InstalledSpeechEngines.h"
#include "tests/platform/speech/ScriptedRecognizer.h"

namespace korvane {
namespace {

SpeechRecognizerRegistry registryOf(std::initializer_list<const char*> locales) {
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    for (const char* locale : locales)
        engines.push_back(std::make_unique<ScriptedEngine>(
            Locale{locale}, [](const auto&, const auto&) { return std::vector<RecognizedSegment>(); }));
    return SpeechRecognizerRegistry(std::move(engines));
}

TEST(SpeechRecognizerRegistry, theFirstEngineThatServesALocaleMakesItsRecogniser) {
    const auto registry = registryOf({"en-US", "fr-FR"});
    ASSERT_TRUE(registry.makeRecognizer(Locale{"fr-FR"}));
    EXPECT_EQ(registry.makeRecognizer(Locale{"fr-FR"})->locale(), Locale{"fr-FR"});
    EXPECT_EQ(registry.makeRecognizer(Locale{"ja-JP"}), nullptr);
}

TEST(SpeechRecognizerRegistry, supportSaysWhatIsInstalledOrWhatEachEngineNeeds) {
    const auto registry = registryOf({"en-US", "fr-FR"});
    EXPECT_TRUE(registry.support(Locale{"fr-FR"}).installed);
    EXPECT_EQ(registry.support(Locale{"fr-FR"}).description, "Script, fr-FR");
    EXPECT_FALSE(registry.support(Locale{"ja-JP"}).installed);
    EXPECT_EQ(registry.support(Locale{"ja-JP"}).description,
              "Write a script for ja-JP. Write a script for ja-JP.");
}

TEST(SpeechRecognizerRegistry, withoutAnyEngineItSaysSo) {
    const auto registry = registryOf({});
    EXPECT_EQ(registry.makeRecognizer(Locale{"en-US"}), nullptr);
    EXPECT_FALSE(registry.support(Locale{"en-US"}).installed);
    EXPECT_NE(registry.support(Locale{"en-US"}).description.find("no speech engine"), std::string::npos);
}

TEST(SpeechRecognizerRegistry, theInstalledOneAgreesWithItself) {
    const auto registry = makeInstalledSpeechEngines();
    for (const char* id : {"ru-RU", "en-US", "uk-UA", "fr-FR", "de-DE", "es-ES", "it-IT", "zh-CN", "ja-JP"}) {
        const auto support = registry->support(Locale{id});
        EXPECT_EQ(support.installed, registry->makeRecognizer(Locale{id}) != nullptr) << id;
        EXPECT_FALSE(support.description.empty());
    }
}

}  // namespace
}  // namespace korvane
