#pragma once

#include <QString>

namespace velmora {

/// The login name of the user that runs the process; empty if the system knows none. Main thread.
QString userName();

} // namespace velmora
