#include "JobsSupport.h"

#include <QLoggingCategory>

#include <mutex>

namespace velmora::test {
namespace {

std::mutex linesMutex;
QStringList lines;

void keep(QtMsgType, const QMessageLogContext& context, const QString& message) {
    if (qstrcmp(context.category, "velmora") != 0)
        return;
    const std::scoped_lock lock(linesMutex);
    lines.append(message);
}

} // namespace

LogLines::LogLines() {
    lines.clear();
    QLoggingCategory::setFilterRules("velmora.info=true");
    qInstallMessageHandler(keep);
}

LogLines::~LogLines() {
    qInstallMessageHandler(nullptr);
    QLoggingCategory::setFilterRules("");
}

QStringList LogLines::all() const {
    const std::scoped_lock lock(linesMutex);
    return lines;
}

SharedStateTest::SharedStateTest() {
    sharedFileList = std::make_shared<FileList>();
    currentSetting = std::make_shared<NodeSetting>();
}

SharedStateTest::~SharedStateTest() {
    sharedFileList.reset();
    currentSetting.reset();
}

NodeInfo& SharedStateTest::addItem(const std::string& path, float startTime, float endTime) {
    const auto item = std::make_shared<NodeInfo>();
    item->inputFile = QString::fromStdString(path);
    item->startTime = startTime;
    item->endTime = endTime;
    sharedFileList->push_back(item);
    return *item;
}

} // namespace velmora::test
