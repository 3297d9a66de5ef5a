#include "RunLog.h"

namespace velmora {
namespace {

constexpr qsizetype kMostLines = 2000; // of a damaged file each packet may be told

bool& isLeftOut() {
    thread_local bool leftOut = false;
    return leftOut;
}

} // namespace

void RunLog::leaveOutThisThread() {
    isLeftOut() = true;
}

RunLog& RunLog::instance() {
    static RunLog log;
    return log;
}

void RunLog::begin(const QString& what) {
    const std::lock_guard lock(mutex_);
    lines_ = {what};
}

void RunLog::add(const QString& line) {
    if (isLeftOut() || std::this_thread::get_id() == mainThread_) {
        return;
    }
    const std::lock_guard lock(mutex_);
    if (lines_.size() < kMostLines) {
        lines_.push_back(line);
    } else if (lines_.size() == kMostLines) {
        lines_.push_back(QStringLiteral("…"));
    }
}

QString RunLog::text() const {
    const std::lock_guard lock(mutex_);
    return lines_.join('\n') + '\n';
}

} // namespace velmora
