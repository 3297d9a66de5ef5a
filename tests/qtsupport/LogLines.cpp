#include "LogLines.h"

#include <QLoggingCategory>

#include <cstring>
#include <mutex>

namespace velmora::test {
namespace {

std::mutex guard; // of `current` and its lines
LogLines* current = nullptr;

} // namespace

LogLines::LogLines() : before_(qInstallMessageHandler(take)) {
    const std::lock_guard lock(guard);
    current = this;
    QLoggingCategory::setFilterRules("velmora.info=true");
}

LogLines::~LogLines() {
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(before_);
    const std::lock_guard lock(guard);
    current = nullptr;
}

QStringList LogLines::all() const {
    const std::lock_guard lock(guard);
    return lines_;
}

void LogLines::clear() {
    const std::lock_guard lock(guard);
    lines_.clear();
}

void LogLines::take(QtMsgType type, const QMessageLogContext& context, const QString& line) {
    const std::lock_guard lock(guard);
    if (!current) {
        return;
    }
    if (std::strcmp(context.category, "velmora") == 0) {
        current->lines_.append(line);
    } else if (current->before_) {
        current->before_(type, context, line);
    }
}

} // namespace velmora::test
