#include "DroppedFiles.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace velmora {

QStringList localFiles(const QMimeData& drag) {
    QStringList paths;
    for (const QUrl& url : drag.urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

void answerDrag(QDropEvent& event, bool welcome) {
    if (welcome && event.mimeData()->hasUrls()) {
        answerDrop(event, true);
    }
}

void answerDrop(QDropEvent& event, bool taken) {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(taken);
}

} // namespace velmora
