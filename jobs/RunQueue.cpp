#include "RunQueue.h"

#include <algorithm>
#include <iterator>

namespace velmora {

RunQueue& RunQueue::instance() {
    static RunQueue queue;
    return queue;
}

void RunQueue::add(RunOwner owner, const ConverterInfo& job) {
    entries_.push_back({.owner = owner, .run = std::make_unique<ConversionRun>(job)});
}

void RunQueue::startNext(RunOwner owner) {
    const auto next = firstWaiting();
    if (isBusy() || next == entries_.end() || next->owner != owner) {
        return;
    }
    ConversionRun& run = *next->run;
    removeCurrent(owner);
    latest_ = &run;
    run.start();
}

void RunQueue::cancelWaiting(RunOwner owner) {
    const auto last = std::find_if(entries_.rbegin(), entries_.rend(), [&](const Entry& entry) {
        return entry.owner == owner && entry.waits();
    });
    if (last != entries_.rend()) {
        entries_.erase(std::prev(last.base()));
    }
}

void RunQueue::cancelCurrent(RunOwner owner) {
    if (const auto found = currentEntry(owner); found != entries_.end()) {
        found->run->cancel();
    }
}

void RunQueue::removeCurrent(RunOwner owner) {
    const ConversionRun* const run = current(owner);
    forget(run);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.run.get() == run; });
}

void RunQueue::removeAll(RunOwner owner) {
    const ConversionRun* const run = current(owner);
    if (run != nullptr && run->isAtWork()) {
        cancelCurrent(owner);
    }
    forget(run);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.owner == owner; });
}

const ConversionRun* RunQueue::current(RunOwner owner) const {
    const auto found = currentEntry(owner);
    return found != entries_.end() ? found->run.get() : nullptr;
}

bool RunQueue::hasWaiting(RunOwner owner) const {
    return std::any_of(firstWaiting(), entries_.end(),
                       [&](const Entry& entry) { return entry.owner == owner; });
}

bool RunQueue::isBusy() const {
    return latest_ != nullptr && latest_->state() != ConversionRun::State::Settled;
}

bool RunQueue::countersAreOf(const ConversionRun& run) const {
    return latest_ == &run && run.state() != ConversionRun::State::NotStarted;
}

/// Nobody else's are the counters of a run that is removed.
void RunQueue::forget(const ConversionRun* run) {
    if (latest_ == run) {
        latest_ = nullptr;
    }
}

RunQueue::Entries::const_iterator RunQueue::currentEntry(RunOwner owner) const {
    return std::ranges::find_if(
        entries_, [&](const Entry& entry) { return entry.owner == owner && !entry.waits(); });
}

RunQueue::Entries::const_iterator RunQueue::firstWaiting() const {
    return std::ranges::find_if(entries_, &Entry::waits);
}

} // namespace velmora
