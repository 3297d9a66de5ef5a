#pragma once

namespace velmora {

/// Takes one line of the media libraries' log, with its end, on whichever thread it was written.
using LogSink = void (*)(const char* line);

} // namespace velmora
