#pragma once

#include <QString>

#include <cstdint>

namespace velmora {

/// What a panel asks of a run.
struct ConverterInfo {
    QString fullPath;            ///< of the output file
    std::int32_t isDirectly = 0; ///< 1: copy packets; 0: re-encode with the current setting
    std::int32_t isCutter = 0;   ///< 1: each item is cut; 0: all items are joined
    std::int32_t width = 0;      ///< pixels, as the panel parsed it; a run takes the setting's
    std::int32_t height = 0;     ///< pixels, likewise
    bool exact = false;          ///< what was marked is what is written
    std::int64_t startMs = 0;    ///< of an exact cut
    std::int64_t endMs = 0;      ///< likewise
};

} // namespace velmora
