#include "bench/ReferenceCommand.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "platform/ffmpeg/EncoderSettings.h"

namespace korvane::bench {
namespace {

constexpr int kRate = 30;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

std::string chosenTimes(const std::vector<SpeechSegment>& words) {
    std::string expression;
    for (const SpeechSegment& word : words)
        expression += (expression.empty() ? "'between(t," : "+between(t,") + number(word.start()) + "," +
                      number(word.end()) + ")";
    return expression + "'";
}

/// Cropped before it is scaled, so only what is seen is scaled, with the filter that the export uses.
std::string picture(const std::string& scaler, const std::string& subtitles) {
    const std::string scaled =
        scaler == "zscale" ? "zscale=w=1080:h=1920:filter=lanczos" : "scale=1080:1920:flags=lanczos";
    return "setpts=N/" + std::to_string(kRate) + "/TB,crop=608:1080," + scaled + ",ass=" + subtitles;
}

/// The same encoders with the same settings as the export.
CommandLine written(const std::string& destination) {
    // clang-format off
    return {"-r", std::to_string(kRate), "-c:v", "libx264", "-preset", kVideoPreset, "-crf", kVideoQuality,
            "-profile:v", "high", "-pix_fmt", "yuv420p",
            "-g", std::to_string(kRate * kLongestGroupSeconds), "-flags:v", "+cgop",
            "-c:a", "aac", "-b:a", std::to_string(kStereoBitRate), "-movflags", "+faststart", destination};
    // clang-format on
}

CommandLine joined(CommandLine first, const CommandLine& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Decodes the source from end to end and drops what was not chosen.
CommandLine bySelecting(const ReferenceJob& job, const std::string& scaler) {
    const std::string times = chosenTimes(job.words);
    return joined({"ffmpeg", "-v", "error", "-y", "-i", job.video, "-filter_complex",
                   "[0:v]select=" + times + "," + picture(scaler, job.subtitles) +
                       "[v];[0:a]aselect=" + times + ",asetpts=N/SR/TB[a]",
                   "-map", "[v]", "-map", "[a]"},
                  written(job.destination));
}

/// Reads a list of parts: only from the key picture before each word.
CommandLine byParts(const ReferenceJob& job, const std::string& scaler) {
    const std::string list = job.folder + "/words.txt";
    std::ofstream parts(list);
    for (const SpeechSegment& word : job.words)
        parts << "file '" << job.video << "'\ninpoint " << number(word.start()) << "\noutpoint "
              << number(word.end()) << "\n";
    return joined({"ffmpeg", "-v", "error", "-y", "-f", "concat", "-safe", "0", "-segment_time_metadata", "1",
                   "-i", list, "-filter_complex",
                   "[0:v]select=concatdec_select," + picture(scaler, job.subtitles) +
                       "[v];[0:a]aselect=concatdec_select,asetpts=N/SR/TB[a]",
                   "-map", "[v]", "-map", "[a]"},
                  written(job.destination));
}

/// Opens the source once for each word, with a jump to it.
CommandLine byInputs(const ReferenceJob& job, const std::string& scaler) {
    CommandLine command{"ffmpeg", "-v", "error", "-y"};
    std::string pads;
    for (std::size_t i = 0; i < job.words.size(); ++i) {
        command = joined(command, {"-threads", "1", "-ss", number(job.words[i].start()), "-t",
                                   number(job.words[i].end() - job.words[i].start()), "-i", job.video});
        pads += "[" + std::to_string(i) + ":v][" + std::to_string(i) + ":a]";
    }
    return joined(joined(command, {"-filter_complex",
                                   pads + "concat=n=" + std::to_string(job.words.size()) +
                                       ":v=1:a=1[s][a];[s]" + picture(scaler, job.subtitles) + "[v]",
                                   "-map", "[v]", "-map", "[a]"}),
                  written(job.destination));
}

/// h:mm:ss.cc
std::string clock(double seconds) {
    const long hundredths = std::lround(seconds * 100.0);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld.%02ld", hundredths / 360000, hundredths / 6000 % 60,
                  hundredths / 100 % 60, hundredths % 100);
    return text;
}

}  // namespace

std::vector<ReferenceForm> referenceForms(const ReferenceJob& job) {
    std::vector<ReferenceForm> forms;
    for (const char* scaler : {"scale", "zscale"}) {
        forms.push_back({std::string("select, ") + scaler, bySelecting(job, scaler)});
        forms.push_back({std::string("parts, ") + scaler, byParts(job, scaler)});
    }
    forms.push_back({"inputs, zscale", byInputs(job, "zscale")});
    return forms;
}

std::string subtitleScript(const std::string& lines) {
    std::string script =
        "[Script Info]\nScriptType: v4.00+\nPlayResX: 1080\nPlayResY: 1920\nScaledBorderAndShadow: yes\n\n"
        "[V4+ Styles]\nFormat: Name, Fontname, Fontsize, PrimaryColour, Bold, BorderStyle, Outline, Shadow, "
        "Alignment, MarginL, MarginR, MarginV\n"
        "Style: Text,Inter,87,&H00FFFFFF,1,1,0,0,8,76,76,0\n"
        "Style: Shade,Inter,87,&H26000000,1,1,0,0,8,76,76,0\n\n"
        "[Events]\nFormat: Layer, Start, End, Style, Text\n";
    std::istringstream input(lines);
    for (std::string line; std::getline(input, line);) {
        double start = 0.0;
        double end = 0.0;
        int text = 0;
        if (std::sscanf(line.c_str(), "%lf\t%lf\t%n", &start, &end, &text) < 2)
            continue;
        const std::string times = clock(start) + "," + clock(end);
        const std::string pop =
            "\\fscx78\\fscy78\\t(0,193,0.5,\\fscx108\\fscy108)\\t(193,350,\\fscx100\\fscy100)}" +
            line.substr(static_cast<std::size_t>(text)) + "\n";
        script += "Dialogue: 0," + times + ",Shade,{\\pos(540,1339)\\blur6" + pop;
        script += "Dialogue: 1," + times + ",Text,{\\pos(540,1337)" + pop;
    }
    return script;
}

}  // namespace korvane::bench
