#include "CustomStringOfHyperlink.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// The one run of characters that the document has.
QTextFragment onlyRun(const QTextDocument& document) {
    const QTextBlock block = document.firstBlock();
    EXPECT_EQ(document.blockCount(), 1);
    const QTextBlock::iterator run = block.begin();
    EXPECT_EQ(++block.begin(), block.end());
    return run.fragment();
}

void expectLink(const QTextDocument& document, const char* text, const char* address) {
    const QTextFragment run = onlyRun(document);
    EXPECT_EQ(run.text(), text);
    const QTextCharFormat format = run.charFormat();
    EXPECT_EQ(format.anchorHref(), address);
    EXPECT_EQ(format.foreground().color(), QColor(0, 0, 255));
    EXPECT_TRUE(format.fontUnderline());
    EXPECT_EQ(format.fontFamilies().toStringList(), QStringList("Arial"));
    EXPECT_TRUE(format.fontItalic());
    EXPECT_EQ(format.fontPointSize(), 12);
}

TEST(CustomStringOfHyperlinkTest, hyperlink_wholeTextIsABlueUnderlinedLink) {
    QTextDocument document;
    QTextCursor(&document).insertFragment(CustomStringOfHyperlink::hyperlinkFromString(
        "How to use the software", QUrl("https://example.org/help page?a=1")));
    expectLink(document, "How to use the software", "https://example.org/help%20page?a=1");
    EXPECT_EQ(onlyRun(document).charFormat().underlineStyle(), QTextCharFormat::SingleUnderline);
}

TEST(CustomStringOfHyperlinkTest, hyperlink_asHtml_keepsItsLook) {
    QTextDocument document;
    document.setHtml(
        CustomStringOfHyperlink::hyperlinkFromString("a <b> & c", QUrl("file:///help.html"))
            .toHtml());
    expectLink(document, "a <b> & c", "file:///help.html");
}

TEST(CustomStringOfHyperlinkTest, hyperlink_emptyText_isEmpty) {
    EXPECT_TRUE(
        CustomStringOfHyperlink::hyperlinkFromString("", QUrl("file:///help.html")).isEmpty());
}

} // namespace
} // namespace velmora::test
