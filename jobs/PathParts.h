#pragma once

#include <QString>

namespace velmora {

/// What follows the last dot of a text; empty without a dot.
QString textAfterLastDot(const QString& text);

/// What follows the last dot of the path's last part, as written; empty without a dot. Also of a
/// name that begins with its only dot.
QString pathExtension(const QString& path);

/// The path's last part up to the dot of its extension; whole when it has none.
QString fileNameWithoutExtension(const QString& path);

} // namespace velmora
