#include "cli/Help.h"

#include "platform/process/UsageError.h"

namespace korvane::cli {
namespace {

constexpr std::string_view program =
    R"(Korvane turns a spoken video into a short portrait reel with burned-in, word-timed
subtitles.

Usage:
  korvane-cli reel VIDEO --language LANGUAGE [--output OUT.mp4]
  korvane-cli transcribe VIDEO --language LANGUAGE [--output FILE]
  korvane-cli export VIDEO --words WORDS.json [--output OUT.mp4]
  korvane-cli languages
  korvane-cli models list|install|remove|add|use|path

Commands:
  reel         transcribe a video and make the reel of its words
  transcribe   write the words of a video with their times
  export       make the reel from words that you have edited or made elsewhere
  languages    list the nine languages and what is installed for each
  models       the models for speech recognition: list, install, add, remove
  help         show this, or "help COMMAND" for one command

Options of every command:
  -q, --quiet    print nothing but results and errors
  -h, --help     show help, also behind a command
  -V, --version  show the version

Results go to standard output, so do the diagnostic lines of an export; progress and
errors go to standard error.

Exit codes:
  0    done
  1    failed; one sentence on standard error says why
  2    the command was used wrongly
  130  stopped by Ctrl-C; nothing half-written is left but a download's part, which
       the next one goes on from
)";

constexpr std::string_view reel =
    R"(Transcribes a video and makes the reel of its words: 1080 x 1920, H.264 and AAC in MP4.

Usage: korvane-cli reel VIDEO --language LANGUAGE [options]

  -l, --language LANGUAGE  the language spoken, such as en-US; see korvane-cli languages
  -o, --output OUT.mp4     the reel; an older file of that name is removed first
                           (korvane_output.mp4 in the current folder)
      --engine ENGINE      whisper or pocketsphinx (whisper where a model is installed)
      --model MODEL        an installed model or a model file (see korvane-cli models)
)";

constexpr std::string_view exporting = R"(Makes the reel of chosen words: 1080 x 1920, H.264 and AAC in MP4.

Usage: korvane-cli export VIDEO --words WORDS.json [options]

  -w, --words WORDS.json   the words, or - for standard input: what korvane-cli transcribe
                           writes as JSON, an object
                           {"language": "en-US", "duration": 61.2, "words":
                           [{"text": "So", "start": 0.31, "end": 0.52}, ...]}
                           of which only "words" is required, or just the array of words;
                           times are seconds of the video
  -o, --output OUT.mp4     the reel; an older file of that name is removed first
                           (korvane_output.mp4 in the current folder)
)";

constexpr std::string_view reelOptions = R"(  -s, --select WORDS       the words to keep (all)
  -d, --drop WORDS         words to leave out of those
      --style STYLE.json   the subtitle style (the saved style, else the defaults)
  -q, --quiet              print nothing but errors
  -h, --help               show this

WORDS are indices that count from 0, separated by commas:
  8      one word
  0-5    the words 0 to 5, both included
  12-    the word 12 and all behind it
  -3     all words up to and including 3
  0..5   the words 0 to 4; the end is not included
Both options may be given again. The reel has each word once, in the order of the
transcript.
)";

constexpr std::string_view transcribe = R"(Writes the words of a video with their times.

Usage: korvane-cli transcribe VIDEO --language LANGUAGE [options]

  -l, --language LANGUAGE  the language spoken, such as en-US; see korvane-cli languages
  -o, --output FILE        where to write; an existing file is replaced (standard output)
  -f, --format FORMAT      text, json, srt or vtt (by the ending of FILE, else text);
                           json is what korvane-cli export reads
      --engine ENGINE      whisper or pocketsphinx (whisper where a model is installed)
      --model MODEL        an installed model or a model file (see korvane-cli models)
  -q, --quiet              print nothing but the words and errors
  -h, --help               show this
)";

constexpr std::string_view models =
    R"(The models with which Whisper recognises all nine languages, on your own machine.

Usage:
  korvane-cli models list          those that there are, with what they need and how fast
                                   they will be here, and those installed
  korvane-cli models install ID    download one; a download that was stopped or broke goes
                                   on where it was
  korvane-cli models remove ID     delete one of your own, or what a stopped download left
  korvane-cli models add FILE      take in a model file that you have: a Whisper model, or
                                   one that finds voices for it (ggml-silero-*.bin)
  korvane-cli models use ID        choose the one that recognises; without a choice it is
                                   the best that fits into memory
  korvane-cli models path          the folder of your own models

      --proxy ADDRESS  the proxy to download through, such as http://proxy:3128 (what
                       http_proxy, https_proxy, all_proxy and no_proxy say)
  -q, --quiet          print nothing but results and errors
  -h, --help           show this

Nothing is downloaded but by "install", and nothing is sent but the request for the file.
)";

constexpr std::string_view languages = R"(Lists the nine languages and what is installed to recognise each.

Usage: korvane-cli languages

  -h, --help  show this
)";

}  // namespace

std::string helpText(std::string_view topic) {
    if (topic.empty() || topic == "help")
        return std::string(program);
    if (topic == "reel")
        return std::string(reel).append(reelOptions);
    if (topic == "export")
        return std::string(exporting).append(reelOptions);
    if (topic == "transcribe")
        return std::string(transcribe);
    if (topic == "models")
        return std::string(models);
    if (topic == "languages")
        return std::string(languages);
    throw UsageError("There is no command \"" + std::string(topic) + "\"; korvane-cli --help lists them.");
}

std::string versionText() {
    return "korvane-cli " KORVANE_VERSION "\n";
}

}  // namespace korvane::cli
