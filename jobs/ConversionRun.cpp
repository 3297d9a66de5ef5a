#include "ConversionRun.h"

#include "ConversionEngine.h"
#include "Job.h"
#include "PlatformLog.h"
#include "RunLog.h"

#include <cassert>
#include <exception>
#include <utility>

namespace velmora {
namespace {

/// What the log of a run begins with.
QString describe(const Job& job) {
    QStringList inputs;
    for (std::size_t i = 0; i < job.inputPaths.size(); ++i) {
        inputs += QString::fromStdString(job.inputPaths[i]);
        if (!job.joins) {
            const double start = job.startSeconds[i];
            inputs.back() +=
                QString::asprintf(", %.3f s to %.3f s", start, start + job.spanSeconds[i]);
        }
    }
    const QString mode =
        QString(job.reencodes ? "re-encoded" : "copied") + (job.exact ? ", exact" : "");
    return QString("%1 (%2) of\n%3")
        .arg(job.outputPaths.empty() ? QString() : QString::fromStdString(job.outputPaths.front()),
             mode, inputs.join('\n'));
}

} // namespace

ConversionRun::ConversionRun(const ConverterInfo& job)
    : items_(sharedFileList ? *sharedFileList : FileList()), request_(RunRequest::of(job)) {}

ConversionRun::~ConversionRun() {
    if (worker_.joinable()) {
        worker_.join();
    }
}

void ConversionRun::start() {
    assert(state_ == State::Waiting);
    state_ = State::Running;
    sinceStart_.start();
    // Before there is a thread: whatever is probed from now on writes to the same tables.
    ConverterThread::fill(request_);
    try {
        Job job(ConversionEngine::instance());
        ConverterThread::addExactPart(request_, job);
        RunLog::instance().begin(describe(job));
        worker_ = std::thread([this, job = std::move(job)] { work(job); });
    } catch (const std::exception& failure) {
        platformLog(QString("the run cannot be started: %1").arg(failure.what()));
        state_ = State::NotStarted;
    }
}

void ConversionRun::work(const Job& job) {
    report_ = ConversionEngine::instance().run(job);
    State atWork = State::Running;
    if (!state_.compare_exchange_strong(atWork, State::Ended)) {
        assert(atWork == State::Stopping);
        state_ = State::Settled;
    }
}

void ConversionRun::cancel() {
    assert(state_ != State::Waiting);
    State before = State::Running;
    // A worker that is stopping settles by itself; only one that is at work writes the state.
    if (!state_.compare_exchange_strong(before, State::Stopping) && before != State::Stopping) {
        state_ = State::Settled;
    }
    ConversionEngine::instance().stopRequested = 1;
}

bool ConversionRun::isAtWork() const {
    const State now = state_;
    return now == State::Running || now == State::Stopping;
}

bool ConversionRun::hasOutcome() const {
    const State now = state_;
    return now == State::Ended || now == State::NotStarted;
}

} // namespace velmora
