#pragma once

#include <QString>
#include <QTextDocumentFragment>
#include <QUrl>

namespace velmora {

class CustomStringOfHyperlink {
public:
    CustomStringOfHyperlink() = delete;

    /// `text` as a link to `url`: blue, underlined, in Arial italic of 12 points. A label takes it
    /// as HTML.
    static QTextDocumentFragment hyperlinkFromString(const QString& text, const QUrl& url);
};

} // namespace velmora
