#include "PathParts.h"

namespace velmora {
namespace {

QString lastPart(const QString& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

} // namespace

QString textAfterLastDot(const QString& text) {
    const qsizetype dot = text.lastIndexOf('.');
    return dot >= 0 ? text.mid(dot + 1) : QString();
}

QString pathExtension(const QString& path) {
    return textAfterLastDot(lastPart(path));
}

QString fileNameWithoutExtension(const QString& path) {
    const QString name = lastPart(path);
    const qsizetype dot = name.lastIndexOf('.');
    return pathExtension(name).isEmpty() ? name : name.left(dot);
}

} // namespace velmora
