#include "JobsSupport.h"

namespace velmora::test {

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
