#include "SettingEditing.h"

#include "SettingControler.h"
#include "SharedState.h"

namespace velmora {
namespace {

void loadEditorProfiles(const QString& path) {
    if (editorProfileStore) {
        return;
    }
    editorProfileStore = std::make_shared<ProfileInfo>();
    editorProfileStore->initWithPath(path);
}

} // namespace

SettingEditing::SettingEditing() = default;

SettingEditing::~SettingEditing() = default;

bool SettingEditing::edit(QWidget& above, const QString& profiles,
                          const std::function<void()>& fill) {
    // A load replaces the current setting by a new one, which is not the one to put back.
    const std::shared_ptr<NodeSetting> setting = currentSetting;
    const NodeSetting before = *setting;
    loadEditorProfiles(profiles);
    fill();
    if (!editor_) {
        editor_ = std::make_unique<SettingControler>();
    }
    const bool confirmed = editor_->showSettingFrom(&above);
    if (!confirmed) {
        *setting = before;
    }
    return confirmed;
}

} // namespace velmora
