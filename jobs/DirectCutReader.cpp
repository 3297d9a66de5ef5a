#include "DirectCutReader.h"

#include "MediaOperations.h"

namespace velmora {
namespace {

/// As a run gets it.
double runSeconds(std::int64_t ms) {
    constexpr float kRunMsPerSecond = 1000.0F;
    return static_cast<double>(static_cast<float>(ms) / kRunMsPerSecond);
}

} // namespace

void DirectCutReader::ask(const QString& path, std::int64_t startMs, std::int64_t endMs) {
    forget();
    question_.ask(
        [path, startMs, endMs](const StopFlag& stop) {
            return mediaOperations().directStretch(path.toStdString(), runSeconds(startMs),
                                                   runSeconds(endMs), stop);
        },
        [this](const std::optional<DirectStretch>& stretch) { take(stretch); });
}

void DirectCutReader::forget() {
    question_.forget();
    take(std::nullopt);
}

void DirectCutReader::take(const std::optional<DirectStretch>& stretch) {
    if (stretch != stretch_) {
        stretch_ = stretch;
        Q_EMIT changed();
    }
}

} // namespace velmora
