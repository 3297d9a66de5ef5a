#include "ProbedFile.h"

#include "AlertPanel.h"
#include "ConversionEngine.h"
#include "FailureText.h"
#include "MediaOperations.h"
#include "PathParts.h"

namespace velmora {
namespace {

/// A rate without a denominator is none.
float sourceFrameRate(const ConversionEngine& engine) {
    return engine.sourceFrameRateDen == 0
               ? 0.0F
               : static_cast<float>(static_cast<double>(engine.sourceFrameRateNum) /
                                    engine.sourceFrameRateDen);
}

} // namespace

std::int32_t probeFile(const QString& path) {
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = path.toStdString();
    return engine.probe();
}

bool acceptProbe(std::int32_t code) {
    const ConversionEngine& engine = ConversionEngine::instance();
    if (code >= 0 && engine.durationFloor >= 0 && engine.durationSeconds >= 0) {
        return true;
    }
    FailureCause cause = mediaOperations().causeOfRefusal();
    if (code >= 0) {
        cause.kind = FailureCause::Kind::UnknownLength;
    }
    cause.path = engine.probePath;
    runAlertPanelWith({sentenceOf(cause), {}}, "File is invalid!");
    return false;
}

std::shared_ptr<NodeInfo> probedItem(const QString& path) {
    const ConversionEngine& engine = ConversionEngine::instance();
    auto item = std::make_shared<NodeInfo>();
    item->inputFile = path;
    item->width = engine.sourceWidth;
    item->height = engine.sourceHeight;
    item->resolution = QString::asprintf("%dx%d", item->width, item->height);
    item->frame_rate = sourceFrameRate(engine);
    item->duration = static_cast<float>(static_cast<double>(engine.durationUs) / 1000000.0);
    item->startTime = 0;
    item->endTime = item->duration;
    item->outFromat = pathExtension(path);
    item->converteState = Ready;
    item->isSeleted = 1;
    return item;
}

} // namespace velmora
