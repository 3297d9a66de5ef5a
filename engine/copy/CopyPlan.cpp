#include "CopyPlan.h"

#include "CopyRules.h"
#include "PictureIndex.h"
#include "PictureTiming.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

constexpr std::int64_t kLeastCopiedUs = 500'000;
// Encoders that are told nothing else begin a group after 250 pictures.
constexpr int kFarthestEntrySeconds = 20;
constexpr int kMostReordered = 2; // that an encoder can be made to declare

constexpr const char* kCannot = "This video cannot be cut exactly without encoding it again: ";

CutRule ruleOf(const WindowTimes& window, AVRational timeBase) {
    return {.start = window.startTicks(timeBase),
            .end = window.endTicks(timeBase).value_or(CutRule::kToTheEnd),
            .leastCopied = av_rescale_q(kLeastCopiedUs, kMicrosecond, timeBase),
            .farthestEntry = av_rescale_q(kFarthestEntrySeconds, {1, 1}, timeBase)};
}

std::string withoutEntry(const CodedPictures& source) {
    const std::string within = std::to_string(kFarthestEntrySeconds) + " s";
    return source.isH264() ? "its groups are open (no IDR picture within " + within + ")."
                           : "it has no key frame within " + within + ".";
}

bool isAnyWanted(const PictureIndex& index, const CutRule& rule) {
    return std::ranges::any_of(index.around.start, [&](const IndexedPicture& picture) {
        return rule.wants(picture.time);
    });
}

std::int64_t lastWanted(const PictureIndex& index, const CutRule& rule) {
    std::int64_t last = rule.start;
    for (const auto* list : {&index.around.start, &index.around.end}) {
        for (const IndexedPicture& picture : *list) {
            last = rule.wants(picture.time) ? std::max(last, picture.time) : last;
        }
    }
    return last;
}

/// What of the pictures themselves speaks against a seam.
std::string troubleWithSeams(const CodedPictures& source, int depth) {
    if (!canEncodeLike(source.stream())) {
        return std::string("there is no encoder that matches its pictures (") +
               avcodec_get_name(source.stream().codecpar->codec_id) +
               "), and its ends are not at key frames.";
    }
    if (depth > kMostReordered) {
        return "its pictures are reordered further than can be matched.";
    }
    return source.sets()->freeId() ? "" : "its decoder settings leave no room for others.";
}

std::string troubleWithSource(const CodedPictures& source) {
    if (source.isH264() && !source.sets()) {
        return "its decoder settings are not in its header.";
    }
    if (source.isH264() && !source.sets()->areAlike()) {
        return "its pictures are of several kinds.";
    }
    const AVCodecParameters& parameters = *source.stream().codecpar;
    if (source.isTimedByOrder() && parameters.video_delay > 0) {
        return "its pictures have no times of their own.";
    }
    return parameters.width > 0 && parameters.height > 0 ? "" : "its size is not known.";
}

/// How many pictures of the index lie between two times of decoding; nothing where it does not hold
/// them all.
std::optional<std::int64_t> countByIndex(AVStream& stream, std::int64_t from, std::int64_t to) {
    const int entries = avformat_index_get_entries_count(&stream);
    if (entries <= 0 || stream.nb_frames != entries) {
        return std::nullopt;
    }
    const int begin = av_index_search_timestamp(&stream, from, AVSEEK_FLAG_ANY);
    const int end = to == CutRule::kToTheEnd
                        ? entries
                        : av_index_search_timestamp(&stream, to, AVSEEK_FLAG_ANY);
    return begin >= 0 && end >= begin ? std::optional<std::int64_t>(end - begin) : std::nullopt;
}

std::int64_t decodedAt(const PictureIndex& index, std::int64_t time) {
    const auto found = index.decodedAt.find(time);
    return found != index.decodedAt.end() ? found->second : time;
}

std::int64_t countInList(const PictureIndex& index, const CutRule& rule) {
    return std::ranges::count_if(index.around.start, [&](const IndexedPicture& picture) {
        return rule.wants(picture.time);
    });
}

std::int64_t estimatedCount(const CodedPictures& source, const CutPlan::Run& run,
                            std::int64_t end) {
    const AVStream& stream = source.stream();
    const AVRational rate =
        stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    const std::int64_t sourceEnd =
        av_rescale_q(source.input().startUs() + source.input().container()->duration, kMicrosecond,
                     stream.time_base);
    const std::int64_t ticks = std::min(end, sourceEnd) - run.first;
    return std::max<std::int64_t>(
        std::llround(static_cast<double>(ticks) * av_q2d(stream.time_base) * av_q2d(rate)), 1);
}

void countPictures(const CodedPictures& source, const PictureIndex& index, const CutRule& rule,
                   CopyPlan& plan) {
    CopyForecast& forecast = plan.forecast;
    forecast.encoded = static_cast<std::int64_t>(plan.cut.head.size() + plan.cut.tail.size());
    if (index.around.startIsWhole) {
        forecast.pictures = countInList(index, rule);
        return;
    }
    const CutPlan::Run& run = *plan.cut.copied;
    const std::int64_t stop = run.stop ? decodedAt(index, *run.stop) : CutRule::kToTheEnd;
    AVStream& stream = *source.input().container()->streams[source.stream().index];
    const auto counted = countByIndex(stream, decodedAt(index, run.first), stop);
    forecast.isEstimate = !counted;
    forecast.pictures = forecast.encoded + counted.value_or(estimatedCount(source, run, rule.end));
}

std::string refusalOfSource(CodedPictures& source, const AVOutputFormat& format) {
    const InputMedia& input = source.input();
    if (std::string refusal = refusalOf(source.stream(), input.audioStream(), format);
        !refusal.empty()) {
        return refusal;
    }
    const std::string trouble = troubleWithSource(source);
    return trouble.empty() ? "" : kCannot + trouble;
}

/// As the end of a sentence.
std::string troubleWithPlan(const CodedPictures& source, const CopyPlan& plan) {
    const bool hasSeams = !plan.cut.head.empty() || !plan.cut.tail.empty();
    return hasSeams ? troubleWithSeams(source, plan.depth) : std::string();
}

} // namespace

CopyPlan planCopy(CodedPictures& source, const Window& window, const AVOutputFormat& format) {
    CopyPlan plan;
    plan.forecast.refusal = refusalOfSource(source, format);
    if (!plan.isPossible()) {
        return plan;
    }
    plan.window = timesOf(window, source.input());
    const CutRule rule = ruleOf(plan.window, source.stream().time_base);
    plan.end = rule.end;
    const PictureIndex index = readIndex(source, rule);
    plan.depth = std::max(index.depth, source.stream().codecpar->video_delay);
    std::string trouble = index.trouble;
    if (trouble.empty() && !isAnyWanted(index, rule)) {
        plan.forecast.refusal = "There is no picture between both times.";
        return plan;
    }
    const auto cut = trouble.empty() ? planCut(index.around, rule) : std::nullopt;
    if (cut) {
        plan.cut = *cut;
        plan.last = lastWanted(index, rule);
        countPictures(source, index, rule, plan);
        trouble = troubleWithPlan(source, plan);
    } else if (trouble.empty()) {
        trouble = withoutEntry(source);
    }
    plan.forecast.refusal = trouble.empty() ? "" : kCannot + trouble;
    return plan;
}

CopyForecast forecastCopy(const std::string& path, const Window& window,
                          const std::string& outputPath, const StopFlag* stop) {
    CopyForecast forecast;
    const AVOutputFormat* format = av_guess_format(nullptr, outputPath.c_str(), nullptr);
    if (format == nullptr) {
        forecast.refusal = "There is no kind of file with this output's name.";
        return forecast;
    }
    CodedPictures source(path, stop);
    if (source.open() < 0) {
        forecast.refusal = "The video cannot be opened.";
        return forecast;
    }
    return planCopy(source, window, *format).forecast;
}

} // namespace velmora
