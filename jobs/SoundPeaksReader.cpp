#include "SoundPeaksReader.h"

#include "MediaOperations.h"
#include "RunQueue.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

#include <sys/resource.h>

namespace velmora {
namespace {

constexpr std::chrono::milliseconds kRunsLookInterval(200);
// A file can claim any length; what lies further back than two days has no picture of its sound.
constexpr std::int64_t kMostUs = std::int64_t{48} * 3600 * 1'000'000;

PeakBlocks blocksOf(std::int64_t beginUs, std::int64_t endUs) {
    const std::int64_t first = std::max<std::int64_t>(beginUs, 0) / kPeakBlockUs;
    const std::int64_t end = (std::max(beginUs, endUs) + kPeakBlockUs - 1) / kPeakBlockUs;
    return {first, std::max<std::int64_t>(end - first, 0)};
}

/// The calling thread works when no other wants to.
void standBack() {
    constexpr int kLast = 19;
    setpriority(PRIO_PROCESS, 0, kLast); // of a thread, on Linux
}

} // namespace

SoundPeaksReader::SoundPeaksReader(QObject* parent) : QObject(parent), watch_(new QTimer(this)) {
    pool_.setMaxThreadCount(kWorkers);
    watch_->setInterval(kRunsLookInterval);
    connect(watch_, &QTimer::timeout, this, &SoundPeaksReader::followRuns);
}

SoundPeaksReader::~SoundPeaksReader() {
    pause();
    pool_.waitForDone();
}

void SoundPeaksReader::read(const QString& path, std::int64_t lengthUs) {
    clear();
    path_ = path;
    all_ = blocksOf(0, std::min(lengthUs, kMostUs));
    visible_ = all_;
    watch_->start();
    followRuns();
}

void SoundPeaksReader::clear() {
    pause();
    watch_->stop();
    peaks_ = {};
    all_ = {};
    Q_EMIT changed();
}

void SoundPeaksReader::setVisible(std::int64_t beginUs, std::int64_t endUs) {
    visible_ = blocksOf(beginUs, endUs);
}

bool SoundPeaksReader::isDone() const {
    for (std::int64_t block = all_.first; block < all_.end(); ++block) {
        if (!peaks_.isKnown(block)) {
            return false;
        }
    }
    return true;
}

void SoundPeaksReader::followRuns() {
    if (RunQueue::instance().isBusy()) {
        pause();
    } else if (!work_) {
        resume();
    }
}

void SoundPeaksReader::resume() {
    work_ = std::make_shared<Work>();
    work_->path = path_.toStdString();
    for (std::size_t worker = 0; worker < kWorkers && work_; ++worker) {
        startNext(worker);
    }
}

void SoundPeaksReader::pause() {
    if (work_) {
        work_->stop = 1;
        work_.reset();
    }
    inHand_ = {};
}

bool SoundPeaksReader::isMissing(std::int64_t block) const {
    return !peaks_.isKnown(block) && std::ranges::none_of(inHand_, [block](const auto& blocks) {
        return blocks && block >= blocks->first && block < blocks->end();
    });
}

/// When no worker has anything left to do, there is nothing more to know.
void SoundPeaksReader::startNext(std::size_t worker) {
    inHand_[worker] =
        nextToRead(all_, visible_, [this](std::int64_t block) { return isMissing(block); });
    if (inHand_[worker]) {
        pool_.start([this, work = work_, worker, wanted = *inHand_[worker]] {
            carryOut(this, work, worker, wanted);
        });
    } else if (std::ranges::none_of(inHand_,
                                    [](const auto& blocks) { return blocks.has_value(); })) {
        watch_->stop();
        work_.reset();
        Q_EMIT done();
    }
}

/// On a thread of the pool.
void SoundPeaksReader::carryOut(SoundPeaksReader* self, const std::shared_ptr<Work>& work,
                                std::size_t worker, PeakBlocks wanted) {
    standBack();
    if (isRaised(&work->stop)) {
        return;
    }
    auto& source = work->sources[worker];
    if (!source) {
        source = mediaOperations().peaksOf(work->path, work->stop);
    }
    const auto sink = [self, &work](std::int64_t block, std::vector<SoundPeak> peaks) {
        QMetaObject::invokeMethod(
            self,
            [self, work, block, peaks = std::move(peaks)]() mutable {
                self->take(work, block, std::move(peaks));
            },
            Qt::QueuedConnection);
    };
    const PeaksEnd how = source->read(wanted, sink);
    QMetaObject::invokeMethod(
        self, [self, work, worker, how] { self->end(work, worker, how); }, Qt::QueuedConnection);
}

void SoundPeaksReader::take(const std::shared_ptr<Work>& work, std::int64_t block,
                            std::vector<SoundPeak> peaks) {
    if (work == work_) {
        peaks_.put(block, std::move(peaks));
        Q_EMIT changed();
    }
}

void SoundPeaksReader::end(const std::shared_ptr<Work>& work, std::size_t worker, PeaksEnd how) {
    if (work != work_) {
        return;
    }
    const PeakBlocks wanted = *inHand_[worker];
    if (how == PeaksEnd::NoSound) {
        peaks_.endAt(0);
    } else if (how == PeaksEnd::SoundEnd) {
        std::int64_t end = wanted.first;
        while (end < wanted.end() && peaks_.isKnown(end)) {
            ++end;
        }
        peaks_.endAt(end);
    }
    if (how != PeaksEnd::Read) {
        Q_EMIT changed();
    }
    startNext(worker);
}

} // namespace velmora
