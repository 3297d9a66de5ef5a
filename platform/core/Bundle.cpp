#include "Bundle.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace velmora {

QString Bundle::pathForResource(const QString& name, const QString& type) {
    return pathForResource(name, type, QCoreApplication::applicationDirPath());
}

QString Bundle::pathForResource(const QString& name, const QString& type,
                                const QString& programFolder) {
    const QString file = name + '.' + type;
    const QString installed = programFolder + "/../share/velmora/" + file;
    const QString compiledIn = ":/" + file;
    for (const QString& path : {installed, compiledIn}) {
        if (QFileInfo(path).isFile()) {
            return path;
        }
    }
    return {};
}

} // namespace velmora
