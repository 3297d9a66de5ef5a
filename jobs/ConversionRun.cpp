#include "ConversionRun.h"

#include "ConversionEngine.h"
#include "Job.h"
#include "PlatformLog.h"

#include <exception>

namespace velmora {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): there is one engine
ConversionRun* ConversionRun::latest_ = nullptr;

ConversionRun::ConversionRun(const ConverterInfo& job)
    : items_(sharedFileList ? *sharedFileList : FileList()), request_(RunRequest::of(job)) {}

ConversionRun::~ConversionRun() {
    if (worker_.joinable())
        worker_.join();
    if (latest_ == this)
        latest_ = nullptr;
}

const ConversionRun* ConversionRun::inProgress() {
    return latest_ != nullptr && !latest_->isSettled() ? latest_ : nullptr;
}

void ConversionRun::start() {
    latest_ = this;
    // Before there is a thread: whatever is probed from now on writes to the same tables.
    ConverterThread::fill(request_);
    ConversionEngine& engine = ConversionEngine::instance();
    try {
        worker_ = std::thread([this, &engine, job = Job(engine)] {
            engine.run(job);
            ended_ = true;
        });
    } catch (const std::exception& failure) {
        platformLog(QString("the run cannot be started: %1").arg(failure.what()));
        latest_ = nullptr; // the engine is free; the states in it are of the run before
        ended_ = true;
    }
}

void ConversionRun::cancel() {
    cancelled_ = true;
    ConversionEngine::instance().stopRequested = 1;
}

} // namespace velmora
