#include "ConversionRun.h"

#include "ConversionEngine.h"
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
    try {
        worker_ = std::thread([this] { ConverterThread::beginConverter(request_, marks_); });
    } catch (const std::exception& failure) {
        platformLog(QString("the run cannot be started: %1").arg(failure.what()));
        marks_.ended = true;
    }
}

void ConversionRun::cancel() {
    marks_.cancelled = true;
    ConversionEngine::instance().stopRequested = 1;
}

} // namespace velmora
