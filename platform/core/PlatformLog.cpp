#include "PlatformLog.h"

#include <QLoggingCategory>

namespace velmora {
namespace {

Q_LOGGING_CATEGORY(velmoraLog, "velmora", QtWarningMsg)

} // namespace

void platformLog(const QString& line) {
    qCInfo(velmoraLog).noquote() << line;
}

} // namespace velmora
