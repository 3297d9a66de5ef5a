#pragma once

#include <QByteArray>

namespace velmora {

/// Whether the binary property list can be handed to a reader that copies whatever is referred to,
/// as often as it is. In a few bytes, arrays that hold the same array twice can describe more than
/// any memory holds; so no array or dictionary may be held twice, and all that is held may take
/// 16 MiB at most. False for damaged lists too.
bool isSafeBinaryPropertyList(const QByteArray& content);

} // namespace velmora
