#include "cli/Arguments.h"

#include <gtest/gtest.h>

#include "cli/Help.h"
#include "cli/LanguageNames.h"
#include "platform/process/UsageError.h"

using namespace korvane;
using namespace korvane::cli;

namespace {

using Strings = std::vector<std::string>;

template <class T>
T parsed(const Strings& arguments) {
    return std::get<T>(parseArguments(arguments).request);
}

std::string refusal(const Strings& arguments) {
    try {
        parseArguments(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(Arguments, theReelTakesItsVideoLanguageAndOutput) {
    const auto reel = parsed<ReelRequest>({"reel", "talk.mp4", "--language", "en-US", "--output", "o.mp4"});
    EXPECT_EQ(reel.video, "talk.mp4");
    EXPECT_EQ(reel.language, "en-US");
    EXPECT_EQ(reel.reel.output, "o.mp4");
    EXPECT_FALSE(reel.reel.style);
    EXPECT_TRUE(reel.reel.selected.empty());
}

TEST(Arguments, theDefaultOutputLiesInTheCurrentFolder) {
    EXPECT_EQ(parsed<ReelRequest>({"reel", "a", "-l", "en-US"}).reel.output, "korvane_output.mp4");
    EXPECT_EQ(parsed<ExportRequest>({"export", "a", "-w", "b"}).reel.output, "korvane_output.mp4");
}

TEST(Arguments, aReelIsNotForStandardOutputButAFileMayHaveThatName) {
    const std::string no = "A reel can't be written to standard output; give the name of a file.";
    EXPECT_EQ(refusal({"reel", "a", "-l", "en-US", "-o", "-"}), no);
    EXPECT_EQ(refusal({"export", "a", "-w", "b", "--output=-"}), no);
    EXPECT_EQ(parsed<ExportRequest>({"export", "a", "-w", "b", "-o", "./-"}).reel.output, "./-");
}

TEST(Arguments, theExportTakesWordsSelectionAndStyle) {
    const auto request = parsed<ExportRequest>({"export", "v", "--words", "w.json", "--select", "0-5,8,12-",
                                                "--drop", "3", "--select", "9", "--style", "s.json"});
    EXPECT_EQ(request.words, "w.json");
    EXPECT_EQ(request.reel.style, "s.json");
    EXPECT_EQ(request.reel.selected, (WordSpans{{0, 5}, {8, 8}, {12, std::nullopt}, {9, 9}}));
    EXPECT_EQ(request.reel.dropped, (WordSpans{{3, 3}}));
}

TEST(Arguments, wordsMayComeFromStandardInput) {
    EXPECT_EQ(parsed<ExportRequest>({"export", "v", "--words", "-"}).words, "-");
}

TEST(Arguments, theFormatComesFromTheOptionElseTheEndingElseIsText) {
    const auto format = [](Strings more) {
        Strings all{"transcribe", "v", "-l", "en-US"};
        all.insert(all.end(), more.begin(), more.end());
        return parsed<TranscribeRequest>(all).format;
    };
    EXPECT_EQ(format({}), TranscriptFormat::text);
    EXPECT_EQ(format({"-o", "a.json"}), TranscriptFormat::json);
    EXPECT_EQ(format({"-o", "a.SRT"}), TranscriptFormat::srt);
    EXPECT_EQ(format({"-o", "a.vtt"}), TranscriptFormat::vtt);
    EXPECT_EQ(format({"-o", "a.txt"}), TranscriptFormat::text);
    EXPECT_EQ(format({"-o", "a.srt", "--format", "vtt"}), TranscriptFormat::vtt);
    EXPECT_EQ(format({"-o", "a.docx", "-f", "json"}), TranscriptFormat::json);
    EXPECT_EQ(format({"-f", "JSON"}), TranscriptFormat::json);
}

TEST(Arguments, aDashAsOutputIsStandardOutput) {
    EXPECT_FALSE(parsed<TranscribeRequest>({"transcribe", "v", "-l", "en-US", "-o", "-"}).output);
}

TEST(Arguments, theEngineAndItsModelCanBeChosen) {
    const auto reel =
        parsed<ReelRequest>({"reel", "a", "-l", "en", "--engine", "whisper", "--model", "m.bin"});
    EXPECT_EQ(reel.speech.engine, "whisper");
    EXPECT_EQ(reel.speech.model, "m.bin");
    EXPECT_FALSE(parsed<TranscribeRequest>({"transcribe", "a", "-l", "en"}).speech.engine);
    EXPECT_EQ(parsed<TranscribeRequest>({"transcribe", "a", "-l", "en", "--model", "base"}).speech.model,
              "base");
    const auto with = [](const Strings& more) {
        Strings arguments{"transcribe", "a", "-l", "en", "-o", "a.srt"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return refusal(arguments);
    };
    EXPECT_EQ(with({"--engine", "other"}),
              "There is no engine \"other\"; there are whisper and pocketsphinx.");
    EXPECT_EQ(with({"--engine", "pocketsphinx", "--model", "base"}),
              "A model can be chosen for whisper only.");
    EXPECT_EQ(with({"--model", ""}), "--model needs a value.");
    EXPECT_NE(refusal({"export", "a", "-w", "b", "--model", "base"}), "accepted");
}

TEST(Arguments, theModelsAreToldWhatToDo) {
    using Action = ModelsRequest::Action;
    EXPECT_EQ(parsed<ModelsRequest>({"models", "list"}).action, Action::list);
    EXPECT_EQ(parsed<ModelsRequest>({"models", "path"}).action, Action::path);
    const auto install = parsed<ModelsRequest>({"models", "install", "base", "--proxy", "http://p:1"});
    EXPECT_EQ(install.action, Action::install);
    EXPECT_EQ(install.subject, "base");
    EXPECT_EQ(install.proxy, "http://p:1");
    EXPECT_EQ(parsed<ModelsRequest>({"models", "add", "--", "-odd.bin"}).subject, "-odd.bin");
    EXPECT_EQ(parsed<ModelsRequest>({"models", "use", "a"}).action, Action::use);
    EXPECT_EQ(parsed<ModelsRequest>({"models", "remove", "a"}).action, Action::remove);
    for (const Strings& wrong :
         {Strings{"models"}, Strings{"models", "fetch"}, Strings{"models", "install"},
          Strings{"models", "install", ""}, Strings{"models", "list", "a"},
          Strings{"models", "add", "a", "b"}, Strings{"models", "list", "--proxy", "a"}})
        EXPECT_TRUE(refusal(wrong).ends_with('.')) << refusal(wrong);
}

TEST(Arguments, quietMayStandBeforeOrBehindTheCommand) {
    EXPECT_TRUE(parseArguments({"-q", "languages"}).quiet);
    EXPECT_TRUE(parseArguments({"languages", "--quiet"}).quiet);
    EXPECT_FALSE(parseArguments({"languages"}).quiet);
}

TEST(Arguments, helpIsThereOnEveryLevel) {
    EXPECT_EQ(parsed<HelpRequest>({"--help"}).topic, "");
    EXPECT_EQ(parsed<HelpRequest>({"help"}).topic, "");
    EXPECT_EQ(parsed<HelpRequest>({"-h", "reel"}).topic, "reel");
    for (const char* command : {"reel", "transcribe", "export", "languages"}) {
        EXPECT_EQ(parsed<HelpRequest>({command, "--help"}).topic, command);
        EXPECT_EQ(parsed<HelpRequest>({"help", command}).topic, command);
        EXPECT_NE(helpText(command).find("Usage: korvane-cli " + std::string(command)), std::string::npos);
    }
    EXPECT_THROW(helpText("nothing"), UsageError);
}

TEST(Arguments, theVersionIsThereOnEveryLevel) {
    EXPECT_NO_THROW(parsed<VersionRequest>({"--version"}));
    EXPECT_NO_THROW(parsed<VersionRequest>({"-V"}));
    EXPECT_NO_THROW(parsed<VersionRequest>({"reel", "--version"}));
}

TEST(Arguments, helpFitsATerminalOfNinetyColumns) {
    for (const char* topic : {"", "reel", "transcribe", "export", "languages"}) {
        const std::string text = helpText(topic);
        for (std::size_t from = 0; from < text.size();) {
            const auto end = text.find('\n', from);
            ASSERT_NE(end, std::string::npos) << topic;
            EXPECT_LE(end - from, 90u) << text.substr(from, end - from);
            from = end + 1;
        }
    }
}

TEST(Arguments, theHelpNamesEveryExitCode) {
    for (const char* line :
         {"  0    done", "  1    failed", "  2    the command was used wrongly", "  130  stopped"})
        EXPECT_NE(helpText("").find(line), std::string::npos) << line;
}

TEST(Arguments, whatIsMissingIsSaid) {
    EXPECT_EQ(refusal({}), "Say what to do; korvane-cli --help lists the commands.");
    EXPECT_EQ(refusal({"-q"}), "Say what to do; korvane-cli --help lists the commands.");
    EXPECT_EQ(refusal({"reel"}), "Say which video: korvane-cli reel VIDEO ...");
    EXPECT_EQ(refusal({"reel", ""}), "The name of the video is empty.");
    EXPECT_TRUE(refusal({"reel", "v"}).starts_with("Say which language is spoken"));
    EXPECT_TRUE(refusal({"transcribe", "v"}).starts_with("Say which language is spoken"));
    EXPECT_TRUE(refusal({"export", "v"}).starts_with("Say which words"));
}

TEST(Arguments, whatIsWrongIsSaid) {
    EXPECT_EQ(refusal({"foo"}), "There is no command \"foo\"; korvane-cli --help lists them.");
    EXPECT_EQ(refusal({"--language", "reel"}), "There is no option --language here.");
    EXPECT_EQ(refusal({"reel", "a", "b", "-l", "en-US"}),
              "One video at a time: \"b\" is one argument too many.");
    EXPECT_EQ(refusal({"reel", "v", "-l", "en-US", "--words", "x"}), "There is no option --words here.");
    EXPECT_EQ(refusal({"transcribe", "v", "-l", "en-US", "-f", "pdf"}),
              "There is no format \"pdf\"; there are text, json, srt and vtt.");
    EXPECT_TRUE(refusal({"transcribe", "v", "-l", "en-US", "-o", "a.docx"}).starts_with("The ending of"));
    EXPECT_TRUE(refusal({"transcribe", "v", "-l", "en-US", "-o", "words"}).starts_with("The ending of"));
    EXPECT_TRUE(refusal({"languages", "x"}).starts_with("korvane-cli languages takes no argument"));
    EXPECT_TRUE(refusal({"export", "v", "-w", "x", "-s", "4-2"}).find("runs backwards") != std::string::npos);
}

TEST(Arguments, aLanguageIsKnownByItsUnambiguousSpellings) {
    for (const char* text : {"en-US", "en-us", "EN_US", "en", "english", "English (US)"})
        EXPECT_EQ(languageNamed(text), "en-US") << text;
    EXPECT_EQ(languageNamed("ja"), "ja-JP");
    EXPECT_EQ(languageNamed("Chinese"), "zh-CN");
    EXPECT_EQ(languageNamed("uk"), "uk-UA");
}

TEST(Arguments, anUnknownLanguageNamesTheNine) {
    for (const char* text : {"en-GB", "xx", "", "e", "klingon", "-"}) {
        try {
            languageNamed(text);
            ADD_FAILURE() << text;
        } catch (const UsageError& error) {
            EXPECT_NE(
                std::string(error.what()).find("ru-RU, en-US, uk-UA, fr-FR, de-DE, es-ES, it-IT, zh-CN"),
                std::string::npos);
        }
    }
}
