#include "DirectCutReader.h"

#include "MediaOperations.h"

namespace velmora {
namespace {

/// As a run gets it.
double runSeconds(std::int64_t ms) {
    constexpr float kMsPerSecond = 1000.0F;
    return static_cast<double>(static_cast<float>(ms) / kMsPerSecond);
}

} // namespace

DirectCutReader::DirectCutReader(QObject* parent) : QObject(parent) {
    worker_.setMaxThreadCount(1);
}

DirectCutReader::~DirectCutReader() {
    if (stop_) {
        *stop_ = 1;
    }
    worker_.waitForDone();
}

void DirectCutReader::ask(const QString& path, std::int64_t startMs, std::int64_t endMs) {
    forget();
    stop_ = std::make_shared<StopFlag>(StopFlag::value_type{0});
    worker_.start([this, stop = stop_, path, startMs, endMs] {
        if (isRaised(stop.get())) {
            return;
        }
        const auto stretch = mediaOperations().directStretch(
            path.toStdString(), runSeconds(startMs), runSeconds(endMs), *stop);
        QMetaObject::invokeMethod(
            this,
            [this, stop, stretch] {
                if (stop == stop_) {
                    take(stretch);
                }
            },
            Qt::QueuedConnection);
    });
}

void DirectCutReader::forget() {
    if (stop_) {
        *stop_ = 1;
        stop_.reset();
    }
    take(std::nullopt);
}

void DirectCutReader::take(const std::optional<DirectStretch>& stretch) {
    if (stretch != stretch_) {
        stretch_ = stretch;
        Q_EMIT changed();
    }
}

} // namespace velmora
