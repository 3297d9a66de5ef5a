#include "WrittenFile.h"

#include "Decoder.h"
#include "InputMedia.h"
#include "SourceReading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace velmora {
namespace {

// Files up to this size are read to count their pictures, if their index does not tell.
constexpr std::int64_t kReadToCount = 32LL * 1024 * 1024;
// A longer group of pictures is not decoded to its end.
constexpr int kPicturesDecoded = 16;

/// "2.8 s".
std::string text(double seconds) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.1f s", seconds);
    return digits.data();
}

/// Decodes pictures from where reading is; whether there was one.
bool showsPicture(InputMedia& input, int most) {
    Decoder decoder;
    if (decoder.open(*input.videoStream(), input.path(), Decoder::Threads::AllCores) < 0) {
        return false;
    }
    bool shown = false;
    const PacketHandle packet(av_packet_alloc());
    for (int taken = 0; packet != nullptr && taken < most && input.read(*packet) >= 0;) {
        if (packet->stream_index == input.videoStreamIndex()) {
            ++taken;
            decoder.send(*packet);
            shown = decoder.receive() != nullptr || shown;
        }
        av_packet_unref(packet.get());
    }
    decoder.sendEnd();
    return decoder.receive() != nullptr || shown;
}

bool showsLastPicture(InputMedia& input) {
    const AVStream& pictures = *input.videoStream();
    const std::int64_t end = pictures.duration > 0 ? pictures.start_time + pictures.duration
                                                   : av_rescale_q(input.startUs() + input.container()->duration,
                                                                  {1, AV_TIME_BASE}, pictures.time_base);
    // In the rare file in which nothing can be found the first picture has told enough.
    return input.seekStream(pictures.index, end) < 0 || showsPicture(input, kPicturesDecoded);
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
    const PacketHandle packet(av_packet_alloc());
    while (packet != nullptr && input.read(*packet) >= 0) {
        count += packet->stream_index == input.videoStreamIndex() && packet->size > 0 ? 1 : 0;
        av_packet_unref(packet.get());
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

/// Exactly: two pictures of any usual rate, and what encoders of sound put around it.
bool isAsLong(double seconds, const WrittenPlan& plan) {
    constexpr double kExactly = 0.15;
    constexpr double kLeast = 0.25; // of a copy, which takes whole packets
    const double allowed =
        plan.isExact ? kExactly : std::max(std::min(1.0, 0.1 * plan.seconds), kLeast);
    return !(plan.seconds > 0) || std::abs(seconds - plan.seconds) <= allowed;
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
    if (!showsPicture(input, kPicturesDecoded)) {
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
    return job.joins ? kPartsOfLength *
                           std::accumulate(job.endSeconds.begin(), job.endSeconds.end(), 0.0)
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
    const std::string& path = job.outputPaths.front();
    if (std::string difference = differenceOf(path, WrittenPlan()); !difference.empty()) {
        return difference;
    }
    InputMedia written(path, nullptr);
    if (written.open() < 0 || written.readStreamInfo() < 0) {
        return {};
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
    return told + (job.joins ? "its parts are " + text(plan.seconds) + " together"
                             : text(plan.seconds) + " were marked") +
           causeOf(job);
}

} // namespace velmora
