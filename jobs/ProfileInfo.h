#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace velmora {

/// One parameter of a profile with the choices that it offers.
struct ProfileParameter {
    QString name;           ///< "vEncoder", "vResolution", "vBitRate" and so on
    QStringList arrayValue; ///< the choices, in display order
    std::int32_t index = 0; ///< the default choice, as the file has it

    /// The position of the default choice: `index`, or 0 where there is no such choice.
    std::int32_t position() const;
    /// The default choice; empty without choices.
    QString choice() const { return arrayValue.value(position()); }
};

/// A named set of output parameters. A file need not give all of them.
struct Profile {
    std::optional<std::int32_t> index; ///< its id
    std::optional<QString> name;       ///< as shown; "(*.mp4)" at its end tells the extension
    std::vector<ProfileParameter> setInfo;

    /// The first parameter of this name; null without one.
    const ProfileParameter* parameter(const QString& wanted) const;
};

/// The profiles of a property list, in its order. Main thread; the profiles that it hands out live
/// as long as it does.
class ProfileInfo {
public:
    /// Reads the file anew. Without a readable list of profiles there the store is empty; what in
    /// it is not as it should be counts as absent.
    ProfileInfo& initWithPath(const QString& path);

    /// The first profile with this id; null without one.
    const Profile* getProfileByID(std::int32_t id) const;
    /// The first profile with exactly this name; null without one.
    const Profile* getProfileByName(const QString& name) const;
    /// The names of all profiles that have one.
    QStringList getAllProfileName() const;

private:
    std::vector<Profile> profiles_;
};

} // namespace velmora
