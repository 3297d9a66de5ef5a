#pragma once

#include <QString>

class QComboBox;

namespace velmora {

// The selected item of a combo box is an entry of its list. Text typed into the box selects an
// entry only where it is the text of one. Main thread.

/// The position of the selected item; -1 without one.
int selectedPosition(const QComboBox& box);
/// The text of the selected item; null without one.
QString selectedItem(const QComboBox& box);
/// Selects the first entry with exactly this text, or none.
void selectItem(QComboBox& box, const QString& text);

} // namespace velmora
