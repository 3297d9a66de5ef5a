#pragma once

#include "ConverterThread.h"
#include "SharedState.h"

#include <atomic>
#include <thread>

namespace velmora {

/// One run with its worker thread, from the request until its outcome has been taken. The engine
/// carries out one at a time. Main thread.
class ConversionRun {
public:
    /// Takes what the run needs from the shared list and the current setting.
    explicit ConversionRun(const ConverterInfo& job);
    /// Waits for the worker; the engine is free then.
    ~ConversionRun();
    ConversionRun(const ConversionRun&) = delete;
    ConversionRun& operator=(const ConversionRun&) = delete;

    /// The run that the engine is busy with; null when it is free.
    static const ConversionRun* inProgress();

    /// Fills the engine's tables and starts the worker. The engine must be free.
    void start();
    /// Asks the worker to stop as soon as it can.
    void cancel();

    /// The items that the results are for.
    const FileList& items() const { return items_; }
    bool joins() const { return request_.job.isCutter == 0; }
    /// Whether the engine's counters are those of this run: no other has been started since.
    bool isLatest() const { return latest_ == this; }
    /// Whether the worker is done. Counters read afterwards are final.
    bool hasEnded() const { return ended_; }
    /// Whether nothing more is to come of it: it has been cancelled and the worker is done.
    bool isSettled() const { return cancelled_ && ended_; }

private:
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): there is one engine
    static ConversionRun* latest_;

    FileList items_;
    RunRequest request_;
    bool cancelled_ = false;
    std::atomic<bool> ended_{false}; ///< set by the worker when it touches nothing any more
    std::thread worker_;
};

} // namespace velmora
