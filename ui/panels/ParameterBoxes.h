#pragma once

#include <QString>

namespace velmora {

struct NodeSetting;
struct ProfileParameter;

namespace Ui {
class OutputSettingsForm;
}

/// The form's boxes with the choices of a profile, one for each parameter that the user can choose.
/// Main thread.
class ParameterBoxes {
public:
    /// The parameter that each panel treats in its own way.
    static constexpr const char* kFrameRate = "vFrameRate";

    /// The form must outlive this.
    explicit ParameterBoxes(const Ui::OutputSettingsForm& form);

    /// Adds the choices of the parameter to its box, if it has one, and selects the one at
    /// `position`.
    void add(const ProfileParameter& parameter, int position);
    void clear();
    void setEnabled(bool enabled);

    /// Puts the selected choices into the setting, except for the frame rate. What is typed and no
    /// choice is empty.
    void putInto(NodeSetting& setting) const;
    /// Selects what the setting has, as far as it is a choice, except for the frame rate.
    void select(const NodeSetting& setting);

private:
    const Ui::OutputSettingsForm& form_;
};

} // namespace velmora
