#include "CommonAction.h"

#include "TimeText.h"

#include <QFileInfo>

#include <utility>

namespace velmora {

QString CommonAction::timeFormatBySecond(std::int32_t seconds) {
    return wholeSecondsText(seconds);
}

std::int32_t CommonAction::getSeleteCount() {
    return getCount();
}

std::int32_t CommonAction::getCount() {
    return sharedFileList ? static_cast<std::int32_t>(sharedFileList->size()) : 0;
}

std::shared_ptr<NodeInfo> CommonAction::getSeleteObject(std::int32_t index) {
    return sharedFileList ? entryAt(*sharedFileList, index) : nullptr;
}

std::shared_ptr<NodeInfo> CommonAction::entryAt(const FileList& list, std::int32_t index) {
    if (list.empty()) {
        return nullptr;
    }
    const bool inside = index >= 0 && std::cmp_less(index, list.size());
    return inside ? list[static_cast<std::size_t>(index)] : list.back();
}

bool CommonAction::fileExist(const QString& path) {
    return QFileInfo::exists(path);
}

} // namespace velmora
