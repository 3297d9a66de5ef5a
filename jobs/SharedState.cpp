#include "SharedState.h"

namespace velmora {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): one per process, by design
std::shared_ptr<FileList> cutterFileList;
std::shared_ptr<FileList> joinerFileList;
std::shared_ptr<FileList> sharedFileList;
std::shared_ptr<NodeSetting> currentSetting;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

} // namespace velmora
