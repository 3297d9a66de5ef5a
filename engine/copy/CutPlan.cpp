#include "CutPlan.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace velmora {
namespace {

using Pictures = std::span<const IndexedPicture>;
using Times = std::vector<std::int64_t>;

/// Of the pictures that are wanted, sorted.
Times wantedOf(Pictures pictures, const CutRule& rule) {
    Times times;
    for (const IndexedPicture& picture : pictures) {
        if (rule.wants(picture.time)) {
            times.push_back(picture.time);
        }
    }
    std::ranges::sort(times);
    return times;
}

Times before(const Times& times, std::int64_t end) {
    return {times.begin(), std::ranges::lower_bound(times, end)};
}

/// The end of the longest beginning of `run` that leaves out nothing shown before the last picture
/// it holds. Those shown before `first` do not belong to it.
std::size_t lengthOfRun(Pictures run, std::int64_t first, const CutRule& rule) {
    // What is left out from there on: the earliest wanted one.
    std::vector<std::int64_t> earliestAfter(run.size() + 1, CutRule::kToTheEnd);
    for (std::size_t i = run.size(); i-- > 0;) {
        const bool counts = rule.wants(run[i].time) && run[i].time >= first;
        earliestAfter[i] =
            counts ? std::min(earliestAfter[i + 1], run[i].time) : earliestAfter[i + 1];
    }
    std::size_t length = 0;
    std::int64_t latest = std::numeric_limits<std::int64_t>::min();
    for (std::size_t i = 0; i < run.size() && run[i].time < rule.end; ++i) {
        latest = std::max(latest, run[i].time);
        length = latest < earliestAfter[i + 1] ? i + 1 : length;
    }
    return length;
}

/// The first picture at or behind `position` that is not one of those shown before `first`.
std::optional<std::int64_t> stopAt(Pictures run, std::size_t position, std::int64_t first) {
    const auto rest = run.subspan(position);
    const auto stop = std::ranges::find_if(
        rest, [first](const IndexedPicture& picture) { return picture.time >= first; });
    return stop != rest.end() ? std::optional(stop->time) : std::nullopt;
}

Times tailOf(Pictures run, std::size_t length, std::int64_t first, const CutRule& rule) {
    Times times = wantedOf(run.subspan(length), rule);
    times.erase(times.begin(), std::ranges::lower_bound(times, first));
    return times;
}

/// Whether what is copied is long enough for the seams that it needs.
bool isWorthIt(const CutPlan& plan, const CutRule& rule, std::int64_t last) {
    if (plan.head.empty() && plan.tail.empty()) {
        return true;
    }
    std::int64_t end = plan.tail.empty() ? rule.end : plan.tail.front();
    end = end == CutRule::kToTheEnd ? last : end;
    return end - plan.copied->first >= rule.leastCopied;
}

/// Pictures that stand before the entry in the stream and are shown after it would be lost.
bool isClean(Pictures before, std::int64_t first, const CutRule& rule) {
    return std::ranges::none_of(before, [&](const IndexedPicture& picture) {
        return picture.time >= first && rule.wants(picture.time);
    });
}

} // namespace

std::optional<CutPlan> planCut(const PicturesAround& pictures, const CutRule& rule) {
    const Pictures start = pictures.start;
    const Times wanted = wantedOf(start, rule);
    const auto entry = std::ranges::find_if(start, [&](const IndexedPicture& picture) {
        return picture.isEntry && rule.wants(picture.time);
    });
    const bool isNear = entry != start.end() && entry->time - rule.start <= rule.farthestEntry;
    if (isNear && isClean({start.begin(), entry}, entry->time, rule)) {
        const std::int64_t first = entry->time;
        const Pictures run =
            pictures.end.empty() ? Pictures(entry, start.end()) : Pictures(pictures.end);
        const std::size_t length = lengthOfRun(run, first, rule);
        CutPlan plan{.head = before(wanted, first),
                     .copied = CutPlan::Run{first, stopAt(run, length, first)},
                     .tail = tailOf(run, length, first, rule)};
        if (length > 0 && isWorthIt(plan, rule, wanted.back())) {
            return plan;
        }
    }
    const std::int64_t longest = rule.farthestEntry + 2 * rule.leastCopied;
    const bool isShort = pictures.startIsWhole && wanted.back() - wanted.front() <= longest;
    return isShort ? std::optional(CutPlan{.head = wanted, .copied = {}, .tail = {}})
                   : std::nullopt;
}

} // namespace velmora
