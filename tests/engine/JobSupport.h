#pragma once

#include "ConversionEngine.h"
#include "FaultyMedia.h"
#include "Job.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/log.h>
}

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// How a run ended.
struct JobResult {
    std::vector<int> states; ///< per input
    int index = 0;
    int percent = 0;
};

/// A test of jobs: its tables are empty when it begins, and it has a folder of its own.
class JobTest : public ::testing::Test {
protected:
    JobTest();

    /// Fill the table as the program does before a run.
    void fillCut(const std::string& input, float startMs, float endMs, const std::string& output);
    void fillJoin(const std::vector<std::string>& inputs, const std::string& output);
    /// Cuts without any length.
    void fillPaths(const std::vector<std::string>& inputs, const std::string& output);
    /// Carries out what is in the table.
    JobResult run();
    JobResult result() const;
    Job newJob() const;

    JobResult cut(const std::string& input, float startMs, float endMs, const std::string& output);
    JobResult join(const std::vector<std::string>& inputs, const std::string& output);

    ConversionEngine& engine_;
    TemporaryFolder folder_;
};

/// Numbers of seconds as fractions, such as time bases and the lengths of frames.
struct Fraction {
    std::int64_t num = 0;
    std::int64_t den = 1;
};

/// "30000/1001" as ffprobe writes it.
Fraction fractionOf(const std::string& text);

/// The numbering that every output stream is held to: unit k (a frame, a sample) starts at the tick
/// nearest to k units. Worked out here in whole numbers.
class Numbering {
public:
    Numbering(Fraction timeBase, Fraction unit);

    std::int64_t at(std::int64_t units) const; ///< ticks
    double secondsAt(std::int64_t units) const;
    /// How many units are written until the stream's clock has reached `seconds`.
    std::int64_t unitsUntil(double seconds) const;

private:
    Fraction timeBase_;
    std::int64_t num_;
    std::int64_t den_;
};

/// The path of a file made by ffmpeg from `command`, in which @NAME stands for a file of
/// TestMedia. Made once and shared by all tests: never write to it.
std::string mediaMadeBy(const std::string& command, const std::string& name);

/// Watches the log of the media libraries, down to what they say for debugging, for lines that
/// contain `text`, and calls `action` with their number, from 1, on the thread that writes them.
/// While one lives, nothing of the log is shown.
class AtLogLine {
public:
    AtLogLine(std::string_view text, std::function<void(int)> action);
    ~AtLogLine();
    AtLogLine(const AtLogLine&) = delete;
    AtLogLine& operator=(const AtLogLine&) = delete;

    int seen() const { return seen_; }

private:
    static void take(const char* line);

    std::string text_;
    std::function<void(int)> action_;
    std::atomic<int> seen_{0};
    int levelBefore_ = av_log_get_level();
};

/// Where a run calls the media libraries.
enum class RunPoint {
    Opening,   ///< before an input is opened
    InfoRead,  ///< after its streams have been found out about, before its first packet
    Resampler, ///< before sound gets a resampler
    Packet,    ///< before a packet goes to the muxer
};

/// Calls `action` each time that a run is at `point`, with the number of that time, from 1, on the
/// run's thread. One at a time.
class AtRunPoint {
public:
    AtRunPoint(RunPoint point, std::function<void(int)> action);

    int seen() const { return seen_; }

private:
    FaultyMedia::Decisions at(RunPoint point);
    void arrive() { action_(++seen_); }

    std::function<void(int)> action_;
    std::atomic<int> seen_{0};
    FaultyMedia watch_;
};

/// What is open and running at one time, to be compared with a later time.
struct Resources {
    static Resources now();

    std::size_t descriptors = 0;
    std::size_t threadCount = 0;
};

/// Fails the test when descriptors or threads have been left since `before`.
void expectNothingLeftSince(const Resources& before);

} // namespace velmora::test
