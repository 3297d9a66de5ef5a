#pragma once

#include "ConversionRun.h"

#include <memory>
#include <vector>

namespace velmora {

/// Whoever asks for runs. It is compared and never looked into.
using RunOwner = const void*;

/// All runs of the process in the order in which they were asked for. The engine carries out one at
/// a time; the next one waits until the one before has been cancelled and has stopped, or its owner
/// has taken its outcome. Of each owner at most one run has been started and not been removed, its
/// current one. Main thread.
class RunQueue {
public:
    /// The queue of the process.
    static RunQueue& instance();

    /// Puts a run at the end. It takes what it needs from the shared list and the current setting.
    void add(RunOwner owner, const ConverterInfo& job);
    /// Starts the owner's first waiting run, if its turn has come. It takes the place of a current
    /// run, which must be settled.
    void startNext(RunOwner owner);
    /// Removes the owner's last waiting run, if there is one.
    void cancelWaiting(RunOwner owner);
    /// Asks the owner's current run to stop.
    void cancelCurrent(RunOwner owner);
    /// Removes the owner's current run, which is over: waits for its worker to let go of it.
    void removeCurrent(RunOwner owner);
    /// Removes all of the owner's runs. Waits for one that is at work, having asked it to stop.
    void removeAll(RunOwner owner);

    /// The owner's current run; null without one.
    const ConversionRun* current(RunOwner owner) const;
    /// Whether a run of the owner waits.
    bool hasWaiting(RunOwner owner) const;
    /// Whether a run is at work, or has ended and its outcome has not been taken.
    bool isBusy() const;
    /// Whether the engine's counters and states are those of this run: it has reached the engine,
    /// and no other has since.
    bool countersAreOf(const ConversionRun& run) const;

private:
    struct Entry {
        RunOwner owner;
        std::unique_ptr<ConversionRun> run;

        bool waits() const { return run->state() == ConversionRun::State::Waiting; }
    };

    using Entries = std::vector<Entry>;

    void forget(const ConversionRun* run);
    Entries::const_iterator currentEntry(RunOwner owner) const;
    Entries::const_iterator firstWaiting() const;

    Entries entries_;                       ///< those that have been started, then those that wait
    const ConversionRun* latest_ = nullptr; ///< the one started last, until it is removed
};

} // namespace velmora
