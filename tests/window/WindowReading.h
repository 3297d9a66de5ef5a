#pragma once

#include <QImage>
#include <QList>
#include <QStringList>

class QWidget;

namespace velmora {
class customImageView;
}

// What a window offers to someone without a mouse, and how well it can be read.

namespace velmora::test {

/// The names of the widgets that the key comes to from the first one until it is back there. Every
/// one must have an accessible name, or the test fails.
QStringList walkBy(QWidget& window, Qt::Key key, Qt::KeyboardModifiers modifiers = {});

/// The enabled controls on show that no walk comes to. Of exclusive buttons, one stands for all.
QStringList notReachedBy(QWidget& window, const QStringList& walk);

/// The letters that press something in the window together with Alt, as far as several have them.
QStringList mnemonicsUsedTwice(QWidget& window);

/// "name: contrast" for each text on show in the window whose contrast to its background is below
/// 4.5 to 1, as it is drawn.
QStringList hardToRead(QWidget& window);

/// The picture that the view has, in one size for all.
QImage pictureOfPreview(const customImageView& view);

} // namespace velmora::test
