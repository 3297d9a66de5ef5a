#include "HelpPage.h"

#include "Bundle.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

namespace velmora {
namespace {

bool isCompiledIn(const QString& path) {
    return path.startsWith(':');
}

QString readablePath(const QString& resource) {
    if (!isCompiledIn(resource)) {
        return QFileInfo(resource).absoluteFilePath();
    }
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/help/index.html";
}

void writeCopy(const QString& resource, const QString& path) {
    QFile page(resource);
    QSaveFile copy(path);
    if (QDir().mkpath(QFileInfo(path).path()) && page.open(QIODevice::ReadOnly) &&
        copy.open(QIODevice::WriteOnly)) {
        copy.write(page.readAll());
        copy.commit();
    }
}

} // namespace

HelpPage::HelpPage()
    : resource_(Bundle::pathForResource("help/index", "html")),
      address_(QUrl::fromLocalFile(readablePath(resource_)).toString(QUrl::FullyEncoded)) {}

void HelpPage::open() const {
    const QUrl url(address_);
    if (isCompiledIn(resource_)) {
        writeCopy(resource_, url.toLocalFile());
    }
    QDesktopServices::openUrl(url);
}

} // namespace velmora
