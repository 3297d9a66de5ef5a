#include "JobSupport.h"

#include "EngineLog.h"

#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

std::atomic<AtLogLine*> listener{nullptr};

std::vector<std::string> ffmpegCommand(const std::string& command, const fs::path& target) {
    std::vector<std::string> words{"ffmpeg", "-v", "error", "-nostdin", "-y"};
    std::istringstream text(command);
    for (std::string word; text >> word;) {
        words.push_back(word.starts_with('@') ? mediaPath(word.substr(1)) : word);
    }
    words.push_back(target.string());
    return words;
}

} // namespace

JobTest::JobTest() : engine_(ConversionEngine::instance()) {
    engine_.reset();
    engine_.inputCount = 0;
    engine_.jobCount = 0;
    engine_.inputPaths.clear();
    engine_.outputPaths.clear();
    for (std::size_t i = 0; i < ConversionEngine::kMaxInputs; ++i) {
        engine_.startTimes[i] = 0.0;
        engine_.endTimes[i] = 0.0;
        engine_.spans[i] = 0.0;
    }
    for (auto& state : engine_.fileStates) {
        state = 0;
    }
    engine_.joinTotalMs = 0;
    engine_.joinMode = 0;
    engine_.reencode = 0;
}

/// A job that takes its settings from the engine.
Job JobTest::newJob() const {
    const Job inEngine(engine_);
    Job job;
    job.video = inEngine.video;
    job.audio = inEngine.audio;
    return job;
}

void JobTest::fillPaths(const std::vector<std::string>& inputs, const std::string& output) {
    Job job = newJob();
    for (const std::string& input : inputs) {
        job.add(input, output, 0.0, 0.0);
    }
    load(engine_, job);
}

void JobTest::fillCut(const std::string& input, float startMs, float endMs,
                      const std::string& output) {
    Job job = newJob();
    job.add(input, output, startMs / 1000.0F, endMs / 1000.0F);
    load(engine_, job);
}

// An item of a join has its length in seconds where that of a cut has milliseconds, and both are
// divided by 1000.
void JobTest::fillJoin(const std::vector<std::string>& inputs, const std::string& output) {
    Job job = newJob();
    job.joins = true;
    for (const std::string& input : inputs) {
        engine_.probePath = input;
        const bool known = engine_.probe() == 0 && engine_.durationSeconds >= 0;
        const auto seconds =
            known ? static_cast<float>(static_cast<double>(engine_.durationUs) / 1e6) : 0.0F;
        job.add(input, output, 0.0, seconds / 1000.0F);
    }
    load(engine_, job);
}

JobResult JobTest::run() {
    engine_.run();
    return result();
}

JobResult JobTest::result() const {
    JobResult result{{}, engine_.currentIndex, engine_.currentPercent};
    for (int i = 0; i < engine_.inputCount; ++i) {
        result.states.push_back(engine_.fileStates[static_cast<std::size_t>(i)]);
    }
    return result;
}

JobResult JobTest::cut(const std::string& input, float startMs, float endMs,
                       const std::string& output) {
    fillCut(input, startMs, endMs, output);
    return run();
}

JobResult JobTest::join(const std::vector<std::string>& inputs, const std::string& output) {
    fillJoin(inputs, output);
    return run();
}

Fraction fractionOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    return {std::stoll(text), std::stoll(text.substr(slash + 1))};
}

Numbering::Numbering(Fraction timeBase, Fraction unit)
    : timeBase_(timeBase), num_(timeBase.den * unit.num), den_(timeBase.num * unit.den) {}

std::int64_t Numbering::at(std::int64_t units) const {
    const std::int64_t distance = units < 0 ? -units : units;
    const std::int64_t ticks = (2 * distance * num_ + den_) / (2 * den_);
    return units < 0 ? -ticks : ticks;
}

double Numbering::secondsAt(std::int64_t units) const {
    const double tick = static_cast<double>(timeBase_.num) / static_cast<double>(timeBase_.den);
    return static_cast<double>(at(units)) * tick;
}

std::int64_t Numbering::unitsUntil(double seconds) const {
    std::int64_t units = 0;
    while (secondsAt(units) < seconds) {
        ++units;
    }
    return units;
}

std::string mediaMadeBy(const std::string& command, const std::string& name) {
    const fs::path folder =
        fs::path(VELMORA_TEST_MEDIA) / "jobs" / std::to_string(std::hash<std::string>{}(command));
    fs::path file = folder / name;
    if (fs::exists(file)) {
        return file;
    }
    fs::create_directories(folder);
    // Two processes may make it at the same time; what each puts in place is complete.
    const fs::path unfinished = folder / (std::to_string(getpid()) + "-" + name);
    const ProgramResult made = runProgram(ffmpegCommand(command, unfinished));
    if (made.status != 0) {
        throw std::runtime_error("cannot make " + name + ": " + made.errors);
    }
    fs::rename(unfinished, file);
    return file;
}

AtLogLine::AtLogLine(std::string_view text, std::function<void(int)> action)
    : text_(text), action_(std::move(action)) {
    listener = this;
    av_log_set_level(AV_LOG_DEBUG);
    setLogSink(take);
}

AtLogLine::~AtLogLine() {
    av_log_set_level(levelBefore_);
    setLogSink(nullptr);
    listener = nullptr;
}

void AtLogLine::take(const char* line) {
    AtLogLine& self = *listener;
    if (std::string_view(line).find(self.text_) != std::string_view::npos) {
        self.action_(++self.seen_);
    }
}

AtRunPoint::AtRunPoint(RunPoint point, std::function<void(int)> action)
    : action_(std::move(action)), watch_(at(point)) {}

FaultyMedia::Decisions AtRunPoint::at(RunPoint point) {
    switch (point) {
    case RunPoint::Opening:
        return {.open = [this] { arrive(); }};
    case RunPoint::InfoRead:
        return {.describe = [this](AVFormatContext& /*input*/) { arrive(); }};
    case RunPoint::Resampler:
        return {.resample = [this] { arrive(); }};
    case RunPoint::Packet:
        break;
    }
    return {.write = [this](const AVPacket& /*packet*/) {
        arrive();
        return false;
    }};
}

// With a program's first thread, a sanitizer may start one of its own, which stays.
Resources Resources::now() {
    std::thread([] {}).join();
    return {openDescriptors(), threads()};
}

void expectNothingLeftSince(const Resources& before) {
    EXPECT_EQ(openDescriptors(), before.descriptors);
    EXPECT_LE(threadsOnceEnded(before.threadCount), before.threadCount);
}

} // namespace velmora::test
