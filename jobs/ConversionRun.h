#pragma once

#include "ConverterThread.h"
#include "SharedState.h"

#include <thread>

namespace velmora {

/// One run with its worker thread, from the request to the message about its outcome. The engine
/// carries out one at a time. Main thread.
class ConversionRun {
public:
    /// Takes what the run needs from the shared list and the current setting.
    explicit ConversionRun(const ConverterInfo& job);
    /// Waits for the worker.
    ~ConversionRun();
    ConversionRun(const ConversionRun&) = delete;
    ConversionRun& operator=(const ConversionRun&) = delete;

    /// The run that was started last and is not settled; null when the engine is free.
    static const ConversionRun* inProgress();

    /// Starts the worker. The engine must be free.
    void start();
    /// Asks the worker to stop as soon as it can.
    void cancel();
    /// To be called when the outcome has been taken.
    void settle() { outcomeTaken_ = true; }

    /// The items that the results are for.
    const FileList& items() const { return items_; }
    bool joins() const { return request_.job.isCutter == 0; }
    /// Whether no other run has been started since.
    bool isLatest() const { return latest_ == this; }
    /// Whether the engine's counters are those of this run.
    bool hasBegun() const { return marks_.begun; }
    /// Whether the worker is done. Counters read afterwards are final.
    bool hasEnded() const { return marks_.ended; }
    /// Whether nothing more is to come of it: its outcome has been taken, or nobody waits for it.
    bool isSettled() const { return outcomeTaken_ || (marks_.cancelled && marks_.ended); }

private:
    static ConversionRun* latest_;

    FileList items_;
    RunRequest request_;
    RunMarks marks_;
    bool outcomeTaken_ = false;
    std::thread worker_;
};

} // namespace velmora
