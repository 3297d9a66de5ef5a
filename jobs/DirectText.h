#pragma once

#include "DirectStretch.h"

#include <QString>

#include <cstdint>

namespace velmora {

/// How a direct cut differs from what is marked, as a sentence: "This cut starts 2.0 s earlier, and
/// ends as much earlier." Empty when nobody would notice.
QString directSentence(const DirectStretch& direct, std::int64_t startUs, std::int64_t endUs);

} // namespace velmora
