#pragma once

#include <QString>

namespace velmora {

/// Writes a diagnostic line to Qt's log, category "velmora", level info. Silent unless that is
/// switched on, as by QT_LOGGING_RULES="velmora.info=true". Any thread.
void platformLog(const QString& line);

} // namespace velmora
