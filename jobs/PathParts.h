#pragma once

#include <QString>

namespace velmora {

/// The extension of the path's last part, as written and without its dot; empty without one. A dot
/// at the very beginning of a name does not begin an extension.
QString pathExtension(const QString& path);

/// The path's last part without its extension.
QString fileNameWithoutExtension(const QString& path);

} // namespace velmora
