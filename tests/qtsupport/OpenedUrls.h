#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

namespace velmora::test {

/// Takes the files that the desktop is asked to open during its life.
class OpenedUrls : public QObject {
    Q_OBJECT

public:
    OpenedUrls() { QDesktopServices::setUrlHandler("file", this, "take"); }
    ~OpenedUrls() override { QDesktopServices::unsetUrlHandler("file"); }
    OpenedUrls(const OpenedUrls&) = delete;
    OpenedUrls& operator=(const OpenedUrls&) = delete;

    const QList<QUrl>& urls() const { return urls_; }

public Q_SLOTS:
    void take(const QUrl& url) { urls_.append(url); }

private:
    QList<QUrl> urls_;
};

} // namespace velmora::test
