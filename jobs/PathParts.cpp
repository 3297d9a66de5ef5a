#include "PathParts.h"

namespace velmora {
namespace {

QString lastPart(const QString& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

} // namespace

QString pathExtension(const QString& path) {
    const QString name = lastPart(path);
    const qsizetype dot = name.lastIndexOf('.');
    return dot >= 0 ? name.mid(dot + 1) : QString();
}

QString fileNameWithoutExtension(const QString& path) {
    const QString name = lastPart(path);
    const qsizetype dot = name.lastIndexOf('.');
    return pathExtension(name).isEmpty() ? name : name.left(dot);
}

} // namespace velmora
