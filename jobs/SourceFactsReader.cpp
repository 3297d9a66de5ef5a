#include "SourceFactsReader.h"

#include "MediaOperations.h"
#include "RunLog.h"

#include <QTimer>

#include <chrono>

namespace velmora {
namespace {

constexpr std::chrono::milliseconds kLookInterval(200);
constexpr std::int64_t kMostMs = 1000;

} // namespace

SourceFactsReader::SourceFactsReader(QObject* parent) : QObject(parent), watch_(new QTimer(this)) {
    worker_.setMaxThreadCount(1);
    clock_.start();
    watch_->setInterval(kLookInterval);
    connect(watch_, &QTimer::timeout, this, &SourceFactsReader::endWhatTakesTooLong);
}

SourceFactsReader::~SourceFactsReader() {
    ending_ = true;
    stop_ = 1;
    worker_.clear();
    worker_.waitForDone();
}

void SourceFactsReader::read(const QString& path) {
    facts_.remove(path);
    if (waiting_.contains(path)) {
        return;
    }
    waiting_.insert(path);
    watch_->start();
    worker_.start([this, path] { work(path); });
}

std::optional<SourceFacts> SourceFactsReader::factsOf(const QString& path) const {
    const auto found = facts_.constFind(path);
    return found != facts_.constEnd() ? std::optional(*found) : std::nullopt;
}

/// On the thread.
void SourceFactsReader::work(const QString& path) {
    begunMs_ = clock_.elapsed();
    stop_ = 0;
    if (ending_) {
        return;
    }
    RunLog::leaveOutThisThread();
    const SourceFacts facts = mediaOperations().readFacts(path.toStdString(), stop_);
    QMetaObject::invokeMethod(
        this, [this, path, facts] { keep(path, facts); }, Qt::QueuedConnection);
}

void SourceFactsReader::keep(const QString& path, const SourceFacts& facts) {
    waiting_.remove(path);
    if (waiting_.isEmpty()) {
        watch_->stop();
    }
    facts_.insert(path, facts);
    Q_EMIT known(path);
}

void SourceFactsReader::endWhatTakesTooLong() {
    if (clock_.elapsed() - begunMs_ > kMostMs) {
        stop_ = 1;
    }
}

} // namespace velmora
