#include "SourceReading.h"

#include "DisplayMatrix.h"
#include "InputMedia.h"
#include "TimeBases.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace velmora {
namespace {

constexpr int kPacketsRead = 600; // of all streams: many seconds, in a few milliseconds
constexpr std::size_t kFewestTimes = 8;

/// Whether the intervals differ by more than the rounding of a coarse time base, and by so much
/// that one sees it.
bool vary(std::vector<std::int64_t>& times, AVRational timeBase) {
    constexpr double kSeen = 0.1; // of an interval
    if (times.size() < kFewestTimes) {
        return false;
    }
    std::ranges::sort(times);
    std::vector<std::int64_t> intervals;
    for (std::size_t i = 1; i < times.size(); ++i) {
        intervals.push_back(times[i] - times[i - 1]);
    }
    std::vector<std::int64_t> sorted = intervals;
    std::ranges::sort(sorted);
    const auto usual = static_cast<double>(sorted[sorted.size() / 2]);
    const double rounding = timeBase.den <= 1000 ? 1.5 : 2.0;
    // What lies outside of the middle half at a constant rate is an exception, such as the end.
    const auto differs = [&](std::int64_t interval) {
        const double difference = std::abs(static_cast<double>(interval) - usual);
        return difference > rounding && difference > kSeen * usual;
    };
    const auto count = std::ranges::count_if(intervals, differs);
    return count > 1;
}

/// Of the index that came with the file; empty without one.
std::vector<std::int64_t> indexedTimes(AVStream& stream) {
    constexpr int kMost = 20'000;
    std::vector<std::int64_t> times;
    const int count = std::min(avformat_index_get_entries_count(&stream), kMost);
    for (int i = 0; i < count; ++i) {
        times.push_back(avformat_index_get_entry(&stream, i)->timestamp);
    }
    return times;
}

/// Empty where not every picture has a time of its own.
std::vector<std::int64_t> readTimes(InputMedia& input) {
    std::vector<std::int64_t> times;
    const PacketHandle packet(av_packet_alloc());
    for (int i = 0; i < kPacketsRead && packet != nullptr && input.read(*packet) >= 0; ++i) {
        if (packet->stream_index == input.videoStreamIndex()) {
            if (packet->pts == AV_NOPTS_VALUE) {
                return {};
            }
            times.push_back(packet->pts);
        }
        av_packet_unref(packet.get());
    }
    // The last ones may lack those that are shown before them.
    constexpr std::size_t kReordered = 16;
    std::ranges::sort(times);
    times.resize(times.size() > kReordered ? times.size() - kReordered : 0);
    return times;
}

bool hasIndexOfAll(const InputMedia& input) {
    const AVStream& pictures = *input.videoStream();
    return pictures.nb_frames > 0 &&
           avformat_index_get_entries_count(&pictures) >= pictures.nb_frames;
}

double soundDelayOf(const InputMedia& input) {
    const AVStream* pictures = input.videoStream();
    const AVStream* sound = input.audioStream();
    if (pictures == nullptr || sound == nullptr || pictures->start_time == AV_NOPTS_VALUE ||
        sound->start_time == AV_NOPTS_VALUE) {
        return 0;
    }
    return static_cast<double>(sound->start_time) * av_q2d(sound->time_base) -
           static_cast<double>(pictures->start_time) * av_q2d(pictures->time_base);
}

} // namespace

SourceFacts readFacts(const std::string& path, const StopFlag* stop) {
    SourceFacts facts;
    InputMedia input(path, stop);
    if (input.open() < 0 || input.readStreamInfo() < 0) {
        return facts;
    }
    facts.hasPictures = input.videoStream() != nullptr;
    facts.hasSound = input.audioStream() != nullptr;
    facts.soundDelay = soundDelayOf(input);
    if (facts.hasPictures) {
        AVStream& stream = *input.videoStream();
        const DisplayTurn turn = displayTurnOf(stream);
        facts.quarterTurns = turn.quarterTurns();
        facts.mirrored = turn.isMirrored();
        std::vector<std::int64_t> times =
            hasIndexOfAll(input) ? indexedTimes(stream) : readTimes(input);
        facts.variesIntervals = vary(times, stream.time_base);
    }
    return facts;
}

} // namespace velmora
