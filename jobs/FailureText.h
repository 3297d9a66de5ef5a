#pragma once

#include "FailureCause.h"

#include <QString>

namespace velmora {

/// A cause in plain words, and one thing to do about it, in one or two sentences; empty when there
/// is no cause.
QString sentenceOf(const FailureCause& cause);

} // namespace velmora
