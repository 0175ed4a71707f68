#include "bench/Measurements.h"

#include <cstdio>
#include <fstream>

#include "bench/ChildProcess.h"
#include "bench/ReferenceCommand.h"
#include "bench/WordChoice.h"

namespace korvane::bench {
namespace {

constexpr ReelShape kMinuteShape{60.0, 20.0, 64};
constexpr ReelShape kPhrasesShape{60.0, 20.0, 64, 4};
constexpr ReelShape kHourShape{3600.0, 20.0, 64};
constexpr Goal kMemoryGoal{Goal::Side::atMost, 500.0};
using Uses = std::vector<ResourceUse>;

CommandLine job(const Setting& setting, const std::string& name, const std::filesystem::path& video,
                const ReelShape& shape) {
    return {setting.worker,
            name,
            video.string(),
            std::to_string(shape.sourceSeconds),
            std::to_string(shape.reelSeconds),
            std::to_string(shape.words),
            std::to_string(shape.together)};
}

CommandLine exportJob(const Setting& setting, const std::filesystem::path& video, const ReelShape& shape,
                      const std::string& destination) {
    CommandLine command = job(setting, "export", video, shape);
    command.push_back(destination);
    return command;
}

/// The worker says what the encoding took; making the pictures beforehand does not count.
ResourceUse encodeAlone(const Setting& setting, const std::filesystem::path& video, const ReelShape& shape,
                        const std::string& destination) {
    CommandLine command = job(setting, "encode", video, shape);
    command.push_back(destination);
    Finished finished = runChild(command);
    std::sscanf(finished.output.c_str(), "%lf %lf", &finished.use.wallSeconds,
                &finished.use.processorSeconds);
    return finished.use;
}

/// Pictures, and the settings that x264 writes into its own stream.
struct Written {
    double pictures = 0.0;
    double megabytes = 0.0;
    std::string settings;
};

Written inspect(const std::string& file) {
    Written written;
    written.megabytes = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
    written.pictures = std::atof(runChild({"ffprobe", "-v", "error", "-select_streams", "v", "-count_packets",
                                           "-show_entries", "stream=nb_read_packets", "-of", "csv=p=0", file})
                                     .output.c_str());
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    const auto begin = bytes.find("options: ");
    if (begin != std::string::npos)
        written.settings = bytes.substr(begin, bytes.find('\0', begin) - begin);
    return written;
}

/// One run of each form; the quickest by the clock.
ReferenceForm bestForm(const std::vector<ReferenceForm>& forms, Report& report) {
    const ReferenceForm* best = nullptr;
    double least = 0.0;
    for (const ReferenceForm& form : forms) {
        const ResourceUse use = runChild(form.command).use;
        report.runs("trial: ffmpeg " + form.name, {use});
        if (!best || use.wallSeconds < least) {
            best = &form;
            least = use.wallSeconds;
        }
    }
    return *best;
}

void compareFiles(Report& report, const std::string& ours, const std::string& theirs,
                  const std::string& alone) {
    const Written a = inspect(ours);
    const Written b = inspect(theirs);
    const Written c = inspect(alone);
    char line[160];
    std::snprintf(line, sizeof line,
                  "pictures and MB: ours %.0f, %.2f; ffmpeg %.0f, %.2f; encoder alone (no sound) %.0f, %.2f",
                  a.pictures, a.megabytes, b.pictures, b.megabytes, c.pictures, c.megabytes);
    report.note(line);
    report.note(std::string("x264's own settings are ") +
                (!a.settings.empty() && a.settings == b.settings && a.settings == c.settings
                     ? "the same in all three"
                     : "DIFFERENT: ours " + a.settings + "; ffmpeg " + b.settings + "; alone " + c.settings));
}

void measureExportOf(const Setting& setting, Report& report, const ReelShape& shape) {
    const auto video = setting.files.minute();
    const std::string folder = setting.files.folder().string();
    const std::string ours = folder + "/ours.mp4";
    const std::string theirs = folder + "/theirs.mp4";
    const std::string alone = folder + "/alone.mp4";
    const std::string subtitles = folder + "/reel.ass";
    std::ofstream(subtitles) << subtitleScript(runChild(job(setting, "lines", video, shape)).output);

    const std::vector<ReferenceForm> forms =
        referenceForms({video.string(), chooseWords(shape), subtitles, folder, theirs});
    const ReferenceForm& plain = forms.front();
    const ReferenceForm reference = bestForm(forms, report);
    Uses our;
    Uses selecting;
    Uses best;
    Uses encoder;
    for (int i = 0; i < setting.rounds; ++i) {
        our.push_back(runChild(exportJob(setting, video, shape, ours)).use);
        selecting.push_back(runChild(plain.command).use);
        best.push_back(reference.name == plain.name ? selecting.back() : runChild(reference.command).use);
        encoder.push_back(encodeAlone(setting, video, shape, alone));
    }
    report.runs("export", our);
    report.runs("ffmpeg " + plain.name, selecting);
    report.runs("ffmpeg " + reference.name + " (quickest)", best);
    report.runs("encoder alone", encoder);
    report.ratio("ffmpeg select / export", selecting, our, Goal{Goal::Side::atLeast, 1.2});
    report.ratio("quickest ffmpeg / export", best, our, Goal{Goal::Side::atLeast, 1.2});
    report.ratio("export / encoder alone", our, encoder, Goal{Goal::Side::atMost, 1.35});
    compareFiles(report, ours, theirs, alone);
}

}  // namespace

void measureExport(const Setting& setting, Report& report) {
    report.section("Export: 20 s in 64 single words out of a minute");
    measureExportOf(setting, report, kMinuteShape);
    report.section("Export: 20 s in 16 phrases of 4 words out of a minute");
    measureExportOf(setting, report, kPhrasesShape);
}

void measureExtraction(const Setting& setting, Report& report, int minutes) {
    report.section("Extraction: AAC out of " + std::to_string(minutes) + " min");
    const auto video = minutes == 1 ? setting.files.minute() : setting.files.video(minutes);
    const std::string anew = (setting.files.folder() / "anew.m4a").string();
    Uses our;
    Uses their;
    for (int i = 0; i < setting.rounds; ++i) {
        Finished finished = runChild({setting.worker, "extract", video.string()});
        while (!finished.output.empty() && finished.output.back() == '\n')
            finished.output.pop_back();
        std::filesystem::remove(finished.output);
        our.push_back(finished.use);
        their.push_back(
            runChild({"ffmpeg", "-v", "error", "-y", "-i", video.string(), "-vn", "-c:a", "aac", anew}).use);
    }
    report.runs("extraction", our);
    report.runs("ffmpeg -vn -c:a aac", their);
    report.ratio("ffmpeg / extraction", their, our, Goal{Goal::Side::atLeast, 10.0});
}

void measureLengths(const Setting& setting, Report& report) {
    report.section("Length: 20 s in 64 words out of an hour and out of a minute");
    const auto minute = setting.files.minute();
    const auto hour = setting.files.video(60);
    const std::string destination = (setting.files.folder() / "length.mp4").string();
    Uses ofMinute;
    Uses ofHour;
    for (int i = 0; i < setting.rounds; ++i) {
        ofMinute.push_back(runChild(exportJob(setting, minute, kMinuteShape, destination)).use);
        ofHour.push_back(runChild(exportJob(setting, hour, kHourShape, destination)).use);
    }
    report.runs("out of a minute", ofMinute);
    report.runs("out of an hour", ofHour);
    report.ratio("hour / minute", ofHour, ofMinute, Goal{Goal::Side::atMost, 1.3});

    report.section("Memory: an hour's source");
    for (const ReelShape& shape : {ReelShape{3600.0, 5.0, 16}, kHourShape, ReelShape{3600.0, 600.0, 1920}}) {
        const ResourceUse use = runChild(exportJob(setting, hour, shape, destination)).use;
        char name[48];
        std::snprintf(name, sizeof name, "reel of %.0f s", shape.reelSeconds);
        report.runs(name, {use});
        report.value(std::string(name) + ", peak", static_cast<double>(use.peakBytes) / 1e6, "MB",
                     kMemoryGoal);
    }
}

void measureMinuteMemory(const Setting& setting, Report& report) {
    report.section("Memory: a minute's source");
    const std::string destination = (setting.files.folder() / "length.mp4").string();
    for (const ReelShape& shape : {ReelShape{60.0, 5.0, 16}, kMinuteShape, ReelShape{60.0, 40.0, 128}}) {
        const ResourceUse use = runChild(exportJob(setting, setting.files.minute(), shape, destination)).use;
        char name[48];
        std::snprintf(name, sizeof name, "reel of %.0f s", shape.reelSeconds);
        report.runs(name, {use});
        report.value(std::string(name) + ", peak", static_cast<double>(use.peakBytes) / 1e6, "MB",
                     kMemoryGoal);
    }
}

void measureRecognition(const Setting& setting, Report& report, int minutes) {
    report.section("Recognition: English, " + std::to_string(minutes) + " min");
    const auto audio = setting.files.speech(minutes);
    const double seconds = std::atof(runChild({"ffprobe", "-v", "error", "-show_entries", "format=duration",
                                               "-of", "csv=p=0", audio.string()})
                                         .output.c_str());
    const Finished finished =
        runChild({setting.worker, "transcribe", audio.string(), std::to_string(seconds)});
    report.runs("recognition", {finished.use});
    report.value("sound", seconds, "s");
    report.value("words", std::atof(finished.output.c_str()), "");
    report.value("real-time factor", finished.use.wallSeconds / seconds, "of the sound's length");
    report.value("real-time factor of one core", finished.use.processorSeconds / seconds,
                 "of the sound's length");
}

}  // namespace korvane::bench
