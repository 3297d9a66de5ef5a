#pragma once

#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace velmora {

class SettingControler;

/// The way of a panel into the editor of the current setting. Main thread.
class SettingEditing {
public:
    SettingEditing();
    ~SettingEditing();
    SettingEditing(const SettingEditing&) = delete;
    SettingEditing& operator=(const SettingEditing&) = delete;

    /// Lets `fill` put the panel's choices into the current setting and the user edit it, over the
    /// window `above`. Whether the user has confirmed; else the setting is put back. The editor's
    /// profiles are read from the property list `profiles` once in the program's life.
    bool edit(QWidget& above, const QString& profiles, const std::function<void()>& fill);

private:
    std::unique_ptr<SettingControler> editor_; ///< made by the first editing
};

} // namespace velmora
