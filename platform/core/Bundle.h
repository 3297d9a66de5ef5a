#pragma once

#include <QString>

namespace velmora {

/// The application's resource files.
class Bundle {
public:
    Bundle() = delete;

    /// The path of resource `name` of type `type`, its extension: the file installed in
    /// ../share/velmora beside the program's folder, or else the one compiled in; empty if there is
    /// neither.
    static QString pathForResource(const QString& name, const QString& type);
    /// The same for a program in `programFolder`.
    static QString pathForResource(const QString& name, const QString& type,
                                   const QString& programFolder);
};

} // namespace velmora
