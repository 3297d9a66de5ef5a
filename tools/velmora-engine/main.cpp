// A small program over the engine for tests, benchmarks and scripts: fills the job table as the
// program's driver does and prints one JSON object.

#include "ConversionEngine.h"
#include "Job.h"
#include "MediaOperations.h"
#include "ParseNumber.h"
#include "PlanQuestion.h"
#include "ReencodeSettings.h"

extern "C" {
#include <libavutil/log.h>
}

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <iostream>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace {

using nlohmann::json;
using velmora::ConversionEngine;
using velmora::Job;

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;
constexpr auto kProgressInterval = std::chrono::milliseconds(10);

using Arguments = std::span<char*>;

constexpr std::string_view kUsageText = R"(usage:
  velmora-engine probe FILE
  velmora-engine snapshot FILE SECONDS OUT.bmp [--repeat N]
  velmora-engine picture FILE SECONDS OUT.png
  velmora-engine plan FILE START END [OUT]
  velmora-engine cut FILE START END OUT [--exact] [--reencode SETTING...]
  velmora-engine join OUT FILE FILE... [--exact] [--reencode SETTING...]
settings, with their defaults:
  vcodec=H264 vbitrate=2000 size=1280x720 fps=0 acodec=AAC abitrate=128 rate=44100 channels=2
)";

int usage() {
    std::cerr << kUsageText;
    return kUsage;
}

void print(const json& object) {
    // Paths may hold any bytes; what is no UTF-8 is shown as such.
    std::cout << object.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
}

int probe(Arguments arguments) {
    if (arguments.size() != 1) {
        return usage();
    }
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = arguments[0];
    const int code = engine.probe();
    print({{"code", code},
           {"streamCount", engine.streamCount},
           {"videoStreamIndex", engine.videoStreamIndex},
           {"audioStreamIndex", engine.audioStreamIndex},
           {"sourceWidth", engine.sourceWidth},
           {"sourceHeight", engine.sourceHeight},
           {"sourceFrameRate", engine.sourceFrameRate},
           {"sourceFrameRateNum", engine.sourceFrameRateNum},
           {"sourceFrameRateDen", engine.sourceFrameRateDen},
           {"durationUs", engine.durationUs},
           {"durationFloor", engine.durationFloor},
           {"durationSeconds", engine.durationSeconds},
           {"videoCodecId", engine.videoCodecId},
           {"videoBitRate", engine.videoBitRate},
           {"audioCodecId", engine.audioCodecId},
           {"audioBitRate", engine.audioBitRate},
           {"audioSampleRate", engine.audioSampleRate},
           {"audioChannels", engine.audioChannels}});
    return code == 0 ? kSuccess : kFailure;
}

int snapshot(Arguments arguments) {
    const bool repeats = arguments.size() == 5 && std::string_view(arguments[3]) == "--repeat";
    if (arguments.size() != 3 && !repeats) {
        return usage();
    }
    const auto start = parseNumber<double>(arguments[1]);
    const auto count = repeats ? parseNumber<int>(arguments[4]) : 1;
    if (!start || !count || *count < 1) {
        return usage();
    }
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = arguments[0];
    engine.snapshotPath = arguments[2];
    engine.currentIndex = 0;
    json milliseconds = json::array();
    int code = 0;
    for (int i = 0; i < *count && code == 0; ++i) {
        engine.startTimes[0] = *start + i;
        const auto before = std::chrono::steady_clock::now();
        code = engine.snapshot();
        const auto taken = std::chrono::steady_clock::now() - before;
        milliseconds.push_back(std::chrono::duration<double, std::milli>(taken).count());
    }
    json result{{"code", code}};
    if (repeats) {
        result["milliseconds"] = milliseconds;
    }
    print(result);
    return code == 0 ? kSuccess : kFailure;
}

int picture(Arguments arguments) {
    const auto seconds = arguments.size() == 3 ? parseNumber<double>(arguments[1]) : std::nullopt;
    if (!seconds) {
        return usage();
    }
    const int code =
        velmora::mediaOperations().writePicture(arguments[0], milliseconds(*seconds), arguments[2]);
    print({{"code", code}});
    return code == 0 ? kSuccess : kFailure;
}

void requestStop(int /*signal*/) {
    ConversionEngine::instance().stopRequested = 1;
}

void reportProgress(const ConversionEngine& engine, const std::stop_token& ended) {
    std::mutex mutex;
    std::condition_variable_any timer;
    std::unique_lock lock(mutex);
    int shown = -1;
    for (bool last = false; !last;) {
        last = ended.stop_requested();
        if (const int percent = engine.currentPercent; percent != shown) {
            shown = percent;
            std::cerr << percent << '\n';
        }
        timer.wait_for(lock, ended, kProgressInterval, [] { return false; });
    }
}

/// Runs the job and prints how it ended.
int runJob(Job job, const std::optional<ReencodeSettings>& settings) {
    if (settings) {
        settings->store(job);
    }
    ConversionEngine& engine = ConversionEngine::instance();
    load(engine, job);
    std::signal(SIGINT, requestStop);
    velmora::RunReport report;
    {
        const std::jthread progress(
            [&engine](const std::stop_token& ended) { reportProgress(engine, ended); });
        report = engine.run(job);
    }
    json states = json::array();
    bool allDone = true;
    for (int i = 0; i < engine.inputCount; ++i) {
        const int state = engine.fileStates[static_cast<std::size_t>(i)];
        states.push_back(state);
        allDone = allDone && state == ConversionEngine::Done;
    }
    json result{{"fileStates", states},
                {"currentIndex", engine.currentIndex.load()},
                {"currentPercent", engine.currentPercent.load()}};
    if (!report.finding.empty()) {
        result["finding"] = report.finding;
    }
    print(result);
    return allDone ? kSuccess : kFailure;
}

/// What a job's arguments say: files and times, and how to re-encode, if at all.
struct JobArguments {
    Arguments plain;
    bool exact = false;
    std::optional<ReencodeSettings> settings;
};

JobArguments withoutExact(JobArguments job) {
    job.exact = !job.plain.empty() && std::string_view(job.plain.back()) == "--exact";
    if (job.exact) {
        job.plain = job.plain.first(job.plain.size() - 1);
    }
    return job;
}

/// Nothing when a setting cannot be used.
std::optional<JobArguments> split(Arguments arguments) {
    const auto option = std::ranges::find(arguments, std::string_view("--reencode"));
    if (option == arguments.end()) {
        return withoutExact({arguments, false, std::nullopt});
    }
    ReencodeSettings settings;
    for (auto setting = option + 1; setting != arguments.end(); ++setting) {
        if (!settings.set(*setting)) {
            std::cerr << "cannot be used: " << *setting << '\n';
            return std::nullopt;
        }
    }
    return withoutExact({Arguments(arguments.begin(), option), false, settings});
}

int cut(Arguments arguments) {
    const auto job = split(arguments);
    if (!job || job->plain.size() != 4) {
        return usage();
    }
    const auto start = parseNumber<double>(job->plain[1]);
    const auto end = parseNumber<double>(job->plain[2]);
    if (!start || !end) {
        return usage();
    }
    Job cut;
    cut.add(job->plain[0], job->plain[3], *start, *end);
    cut.exact = job->exact;
    if (job->exact) {
        cut.windows.push_back({milliseconds(*start), milliseconds(*end)});
    }
    return runJob(std::move(cut), job->settings);
}

/// The length of a file in seconds, as the joiner's list holds it; 0 when it cannot be told.
float lengthOf(const char* path) {
    constexpr double kMicroseconds = 1e6;
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = path;
    const bool known = engine.probe() == 0 && engine.durationSeconds >= 0;
    return known ? static_cast<float>(static_cast<double>(engine.durationUs) / kMicroseconds)
                 : 0.0F;
}

int join(Arguments arguments) {
    const auto job = split(arguments);
    if (!job || job->plain.size() < 2 || job->plain.size() > ConversionEngine::kMaxInputs + 1) {
        return usage();
    }
    Job join;
    join.joins = true;
    join.exact = job->exact;
    for (const char* const input : job->plain.subspan(1)) {
        // The list of a join counts seconds where a cut's counts milliseconds.
        constexpr float kUnit = 1000.0F;
        join.add(input, job->plain[0], 0.0, lengthOf(input) / kUnit);
    }
    return runJob(std::move(join), job->settings);
}

int command(Arguments arguments) {
    if (arguments.size() < 2) {
        return usage();
    }
    av_log_set_level(AV_LOG_WARNING);
    const std::string_view name = arguments[1];
    const Arguments rest = arguments.subspan(2);
    if (name == "probe") {
        return probe(rest);
    }
    if (name == "snapshot") {
        return snapshot(rest);
    }
    if (name == "picture") {
        return picture(rest);
    }
    if (name == "plan") {
        const auto asked = PlanQuestion::of(rest);
        return asked ? asked->answer() : usage();
    }
    if (name == "cut") {
        return cut(rest);
    }
    if (name == "join") {
        return join(rest);
    }
    return usage();
}

} // namespace

int main(int argc, char** argv) {
    try {
        return command({argv, static_cast<std::size_t>(argc)});
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return kFailure;
    }
}
