#pragma once

#include <QString>
#include <QVariant>

namespace velmora {

/// What the property list at `path`, XML or binary, holds: arrays are QVariantList, dictionaries
/// QVariantMap, texts QString, numbers qlonglong or double, truth values bool; anything else is
/// left empty but keeps its place. Compiled-in files can be read too. A file that is missing,
/// damaged, larger than 256 KiB, nested more than 32 deep, or small and yet a description of much
/// more than its size, gives an empty value. Any thread.
QVariant readPropertyList(const QString& path);

} // namespace velmora
