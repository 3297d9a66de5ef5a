#pragma once

#include "NodeInfo.h"
#include "NodeSetting.h"

#include <memory>
#include <vector>

namespace velmora {

using FileList = std::vector<std::shared_ptr<NodeInfo>>;

// The state that all windows share. The main window makes these and replaces them with every video
// that the cutter loads; until then they are null. Main thread, but for a run, which reads the
// shared list and the current setting while modal windows keep both as they are.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): one per process, by design
extern std::shared_ptr<FileList> cutterFileList; ///< the cutter's item, if one is loaded
extern std::shared_ptr<FileList> joinerFileList; ///< the joiner's rows
extern std::shared_ptr<FileList> sharedFileList; ///< the one of the two that is on show
extern std::shared_ptr<NodeSetting> currentSetting;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

} // namespace velmora
