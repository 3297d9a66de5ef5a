#pragma once

#include "ConverterThread.h"
#include "RunReport.h"
#include "SharedState.h"

#include <QElapsedTimer>

#include <atomic>
#include <cstdint>
#include <thread>

namespace velmora {

struct Job;

/// One run with its worker thread, from the request until its outcome has been taken. The engine
/// carries out one at a time; RunQueue sees to that. Main thread.
///
/// It works on copies of the items and the setting, made when the user asks for it; results go into
/// those items, also when the lists have been replaced since. The engine's tables are filled, and
/// its stop flag cleared, on the main thread before the worker exists, so that no cancel is lost
/// and a probe may write the same fields from then on. The counters are its own as soon as it has
/// been started. The worker says when it has ended, so that a run which ends without going over all
/// its inputs is told as failed.
class ConversionRun {
public:
    /// How far it is. A run waits, then runs, then has ended; a cancel makes a running one stop and
    /// then settle, and settles one that has ended. One that cannot be started goes from waiting to
    /// not started, which a cancel settles as well.
    enum class State : std::uint8_t {
        Waiting,    ///< it has not touched the engine
        Running,    ///< the worker is at it
        Stopping,   ///< cancelled, and the worker is still at it
        Ended,      ///< the worker is done; the outcome is to be told
        NotStarted, ///< it has no worker; the engine's states are those of the run before
        Settled,    ///< cancelled, and the worker is done: nothing more is to come of it
    };

    /// Takes what the run needs from the shared list and the current setting.
    explicit ConversionRun(const ConverterInfo& job);
    /// Waits for the worker; the engine is free then.
    ~ConversionRun();
    ConversionRun(const ConversionRun&) = delete;
    ConversionRun& operator=(const ConversionRun&) = delete;

    /// Fills the engine's tables and starts the worker. The engine must be free.
    void start();
    /// Asks the worker to stop as soon as it can; the outcome of a run that has ended is not told.
    /// Not for one that waits.
    void cancel();

    /// Counters that are read after it has said that the worker is done are final.
    State state() const { return state_; }
    /// Whether the worker may still change the engine's fields.
    bool isAtWork() const;
    /// Whether it is over and somebody is still to be told how it went.
    bool hasOutcome() const;
    /// The items that the results are for.
    const FileList& items() const { return items_; }
    bool joins() const { return request_.job.isCutter == 0; }
    /// What is to be told of it; once it is over.
    const RunReport& report() const { return report_; }
    /// Since it was started.
    std::int64_t passedMs() const { return sinceStart_.elapsed(); }

private:
    void work(const Job& job);

    FileList items_;
    RunRequest request_;
    RunReport report_; ///< by the worker, before it says that it is done
    QElapsedTimer sinceStart_;
    std::atomic<State> state_{State::Waiting}; ///< by the worker when it touches nothing any more
    std::thread worker_;
};

} // namespace velmora
