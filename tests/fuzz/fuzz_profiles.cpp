// Any bytes as a property list: profiles and the settings made of them.

#include "MemoryFile.h"
#include "NodeSetting.h"
#include "ProfileInfo.h"

#include <QString>

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const velmora::fuzz::MemoryFile file(data, size);
    velmora::ProfileInfo profiles;
    profiles.initWithPath(QString::fromStdString(file.path()));
    velmora::NodeSetting setting;
    for (const QString& name : profiles.getAllProfileName()) {
        setting.initWithDict(profiles.getProfileByName(name));
    }
    setting.initWithDict(profiles.getProfileByID(setting.defineType));
    return 0;
}
