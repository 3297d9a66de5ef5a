#include "CustomStringOfHyperlink.h"

#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>

namespace velmora {

QTextDocumentFragment CustomStringOfHyperlink::hyperlinkFromString(const QString& text,
                                                                   const QUrl& url) {
    QTextCharFormat link;
    link.setAnchor(true);
    link.setAnchorHref(url.toString(QUrl::FullyEncoded));
    link.setForeground(QColor(Qt::blue));
    link.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    link.setFontFamilies({"Arial"});
    link.setFontItalic(true);
    link.setFontPointSize(12.0);

    QTextDocument document;
    QTextCursor(&document).insertText(text, link);
    return QTextDocumentFragment(&document);
}

} // namespace velmora
