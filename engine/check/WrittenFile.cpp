#include "WrittenFile.h"

#include "Decoder.h"
#include "EngineLog.h"
#include "InputMedia.h"
#include "SourceReading.h"
#include "TimeBases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <utility>

namespace velmora {
namespace {

// Files up to this size are read to count their pictures, if their index does not tell.
constexpr std::int64_t kReadToCount = 32LL * 1024 * 1024;
// More than any decoder holds back at one thread, few enough to cost next to nothing.
constexpr int kPicturesDecoded = 20;

/// "2.8 s".
std::string text(double seconds) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.1f s", seconds);
    return digits.data();
}

/// A key frame needs nothing but itself, which costs one picture's time and memory.
FrameHandle shownAlone(const InputMedia& input, const AVPacket& packet) {
    Decoder decoder;
    if (decoder.open(*input.videoStream(), input.path()) < 0) {
        return nullptr;
    }
    decoder.send(packet);
    decoder.sendEnd();
    return decoder.receive();
}

/// Decodes this packet and, where that is not enough, those behind it until a picture is shown;
/// null: none of the first is.
FrameHandle shownFrom(InputMedia& input, PacketHandle packet) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    if (FrameHandle picture = shownAlone(input, *packet)) {
        return picture;
    }
    Decoder decoder;
    if (decoder.open(*input.videoStream(), input.path()) < 0) {
        return nullptr;
    }
    for (int i = 0; i < kPicturesDecoded && packet != nullptr; ++i) {
        decoder.send(*packet);
        if (FrameHandle picture = decoder.receive()) {
            return picture;
        }
        packet = input.readVideoPacket();
    }
    decoder.sendEnd();
    return decoder.receive();
}

/// Whether the very first packet is shown: a player that finds one it cannot decode shows nothing,
/// or grey.
bool showsFirstPicture(InputMedia& input) {
    PacketHandle first = input.readVideoPacket();
    if (first == nullptr) {
        return false;
    }
    const std::int64_t time = first->pts;
    const FrameHandle picture = shownFrom(input, std::move(first));
    return picture != nullptr &&
           (time == AV_NOPTS_VALUE || picture->pts == AV_NOPTS_VALUE || picture->pts <= time);
}

/// From the last key frame on. In the rare file in which that cannot be found the first picture has
/// told enough.
bool showsLastPicture(InputMedia& input) {
    const AVStream& pictures = *input.videoStream();
    if (input.container()->duration <= 0) {
        return true;
    }
    // Elsewhere what is found is a key frame, also one so damaged that it no longer looks like one.
    const bool landsAnywhere = (input.container()->iformat->flags & AVFMT_TS_DISCONT) != 0;
    const std::int64_t endUs = input.startUs() + input.container()->duration;
    for (const std::int64_t backUs : {INT64_C(0), INT64_C(2'000'000), INT64_C(10'000'000)}) {
        const std::int64_t from = av_rescale_q(std::max(endUs - backUs, input.startUs()),
                                               kMicrosecond, pictures.time_base);
        if (input.seekStream(pictures.index, from) < 0) {
            return true;
        }
        PacketHandle packet = input.readVideoPacket();
        while (packet != nullptr && landsAnywhere && (packet->flags & AV_PKT_FLAG_KEY) == 0) {
            packet = input.readVideoPacket();
        }
        if (packet != nullptr) {
            return shownFrom(input, std::move(packet)) != nullptr;
        }
    }
    return true;
}

std::optional<std::int64_t> countPictures(const std::string& path) {
    InputMedia input(path, nullptr);
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
std::string causeOf(const Job& job) {
    for (const std::string& path : job.inputPaths) {
        if (readFacts(path, nullptr).variesIntervals) {
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
double secondsToBeHad(const Job& job, double planned) {
    InputMedia source(job.inputPaths.front(), nullptr);
    if (job.joins || source.open() < 0 || source.readStreamInfo() < 0 || !(lengthOf(source) > 0)) {
        return planned;
    }
    return std::clamp(lengthOf(source) - job.startSeconds.front(), 0.0, planned);
}

} // namespace

std::string differenceOf(const std::string& path, const WrittenPlan& plan) {
    InputMedia input(path, nullptr);
    if (std::string difference = openingDifference(input, plan); !difference.empty()) {
        return difference;
    }
    if (const auto count = plan.pictures ? countPictures(path) : std::nullopt;
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

std::string differenceOf(const Job& job) {
    InputMedia written(job.outputPaths.front(), nullptr);
    if (std::string difference = openingDifference(written, WrittenPlan()); !difference.empty()) {
        return difference;
    }
    WrittenPlan plan;
    plan.seconds = plannedSeconds(job);
    if (!isAsLong(secondsOf(written), plan)) {
        plan.seconds = secondsToBeHad(job, plan.seconds);
    }
    if (isAsLong(secondsOf(written), plan)) {
        return {};
    }
    const std::string told = "The file is " + text(secondsOf(written)) + " long, ";
    return told +
           (job.joins ? "its parts are " + text(plan.seconds) + " together"
                      : text(plan.seconds) + " were marked") +
           causeOf(job);
}

} // namespace velmora
