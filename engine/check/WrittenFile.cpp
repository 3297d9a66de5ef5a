#include "WrittenFile.h"

#include "Decoder.h"
#include "EngineLog.h"
#include "InputMedia.h"
#include "ShownPictures.h"
#include "SourceReading.h"
#include "TimeBases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <utility>
#include <vector>

namespace velmora {
namespace {

// Files up to this size are read to count their pictures, if their index does not tell.
constexpr std::int64_t kReadToCount = 32LL * 1024 * 1024;

/// "2.8 s".
std::string text(double seconds) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.1f s", seconds);
    return digits.data();
}

std::optional<std::int64_t> countPictures(const std::string& path, const StopFlag* stop) {
    InputMedia input(path, stop);
    if (input.open() < 0 || input.readStreamInfo() < 0 || input.videoStream() == nullptr) {
        return std::nullopt;
    }
    if (input.videoStream()->nb_frames > 0) {
        return input.videoStream()->nb_frames;
    }
    if (avio_size(input.container()->pb) > kReadToCount) {
        return std::nullopt;
    }
    std::int64_t count = 0;
    while (const PacketHandle packet = input.readVideoPacket()) {
        count += packet->size > 0 ? 1 : 0;
    }
    return count;
}

double lengthOf(const InputMedia& input) {
    return static_cast<double>(std::max<std::int64_t>(input.container()->duration, 0)) /
           AV_TIME_BASE;
}

/// Of the pictures, where they have a length of their own.
double secondsOf(const InputMedia& input) {
    const AVStream& pictures = *input.videoStream();
    return pictures.duration > 0
               ? static_cast<double>(pictures.duration) * av_q2d(pictures.time_base)
               : lengthOf(input);
}

/// Where a container does not tell how long its last picture lasts, readers take the one before it
/// for a measure, or none.
bool isExactlyAsLong(double seconds, const WrittenPlan& plan) {
    constexpr double kAround = 0.15; // what encoders of sound put around it
    const double usual = plan.pictures && *plan.pictures > 0
                             ? plan.seconds / static_cast<double>(*plan.pictures)
                             : 0;
    return seconds >= plan.lastPictureSeconds - kAround &&
           seconds <= plan.seconds + kAround + 2 * usual;
}

bool isAsLong(double seconds, const WrittenPlan& plan) {
    constexpr double kLeast = 0.25; // of a copy, which takes whole packets
    if (!(plan.seconds > 0)) {
        return true;
    }
    const double allowed = std::max(std::min(1.0, 0.1 * plan.seconds), kLeast);
    return plan.isExact ? isExactlyAsLong(seconds, plan)
                        : std::abs(seconds - plan.seconds) <= allowed;
}

std::string openingDifference(InputMedia& input, const WrittenPlan& plan) {
    if (input.open() < 0 || input.readStreamInfo() < 0) {
        return "The written file cannot be opened again.";
    }
    if (input.videoStream() == nullptr) {
        return "The written file has no pictures.";
    }
    if (plan.hasSound && input.audioStream() == nullptr) {
        return "The written file has no sound.";
    }
    if (!showsFirstPicture(input)) {
        return "The first picture of the written file cannot be shown.";
    }
    return showsLastPicture(input) ? "" : "The last picture of the written file cannot be shown.";
}

/// In the words in which the source is spoken of.
std::string causeOf(const Job& job, const StopFlag* stop) {
    for (const std::string& path : job.inputPaths) {
        if (readFacts(path, stop).variesIntervals) {
            return job.joins ? ": the pictures of one of them come at varying intervals."
                             : ": this video's pictures come at varying intervals.";
        }
    }
    return ".";
}

/// Of all inputs of a join, which are told in thousandths; of the stretch that a cut takes.
double plannedSeconds(const Job& job) {
    constexpr double kPartsOfLength = 1000.0;
    return job.joins
               ? kPartsOfLength * std::accumulate(job.endSeconds.begin(), job.endSeconds.end(), 0.0)
               : job.spanSeconds.front();
}

/// A cut beyond the end of its source takes what there is.
double secondsToBeHad(const Job& job, double planned, const StopFlag* stop) {
    InputMedia source(job.inputPaths.front(), stop);
    if (job.joins || source.open() < 0 || source.readStreamInfo() < 0 || !(lengthOf(source) > 0)) {
        return planned;
    }
    return std::clamp(lengthOf(source) - job.startSeconds.front(), 0.0, planned);
}

std::string plannedDifference(const std::string& path, const WrittenPlan& plan,
                              const StopFlag* stop) {
    InputMedia input(path, stop);
    if (std::string difference = openingDifference(input, plan); !difference.empty()) {
        return difference;
    }
    if (const auto count = plan.pictures ? countPictures(path, stop) : std::nullopt;
        count && *count != *plan.pictures) {
        return "The file has " + std::to_string(*count) + " pictures, " +
               std::to_string(*plan.pictures) + " were written.";
    }
    if (!isAsLong(secondsOf(input), plan)) {
        return "The file is " + text(secondsOf(input)) + " long, " + text(plan.seconds) +
               " were marked.";
    }
    return {};
}

std::string differenceFromJob(const Job& job, const StopFlag* stop) {
    InputMedia written(job.outputPaths.front(), stop);
    if (std::string difference = openingDifference(written, WrittenPlan()); !difference.empty()) {
        return difference;
    }
    WrittenPlan plan;
    plan.seconds = plannedSeconds(job);
    const auto isWrong = [&plan](double seconds) { return !isAsLong(seconds, plan); };
    // The sound may have become longer than the pictures.
    const std::array lengths{secondsOf(written), lengthOf(written)};
    if (std::ranges::any_of(lengths, isWrong)) {
        plan.seconds = secondsToBeHad(job, plan.seconds, stop);
    }
    const auto* const wrong = std::ranges::find_if(lengths, isWrong);
    if (wrong == lengths.end()) {
        return {};
    }
    const std::string told = "The file is " + text(*wrong) + " long, ";
    return told +
           (job.joins ? "its parts are " + text(plan.seconds) + " together"
                      : text(plan.seconds) + " were marked") +
           causeOf(job, stop);
}

/// What has been read before a stop says nothing.
std::string unlessStopped(std::string difference, const StopFlag* stop) {
    return isRaised(stop) ? std::string() : difference;
}

} // namespace

std::string differenceOf(const std::string& path, const WrittenPlan& plan, const StopFlag* stop) {
    return unlessStopped(plannedDifference(path, plan, stop), stop);
}

std::string differenceOf(const Job& job, const StopFlag* stop) {
    return unlessStopped(differenceFromJob(job, stop), stop);
}

} // namespace velmora
