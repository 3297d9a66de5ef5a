#pragma once

#include "SharedState.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace velmora {

/// Helpers over the shared file list, which counts as empty while there is none.
class CommonAction {
public:
    CommonAction() = delete;

    /// "hh:mm:ss"; the hours may have more digits, and negative seconds give negative fields.
    static QString timeFormatBySecond(std::int32_t seconds);
    /// The number of entries, selected or not.
    static std::int32_t getSeleteCount();
    static std::int32_t getCount();
    /// The entry at `index`; the last one when there is none at `index`; null in an empty list.
    static std::shared_ptr<NodeInfo> getSeleteObject(std::int32_t index);
    /// Likewise for any list.
    static std::shared_ptr<NodeInfo> entryAt(const FileList& list, std::int32_t index);
    /// Whether the file system has an entry at `path`.
    static bool fileExist(const QString& path);
};

} // namespace velmora
