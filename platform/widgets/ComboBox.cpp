#include "ComboBox.h"

#include <QComboBox>

namespace velmora {
namespace {

int positionOf(const QComboBox& box, const QString& text) {
    return box.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

} // namespace

int selectedPosition(const QComboBox& box) {
    // An entry that is there twice may be selected at its second place.
    const int current = box.currentIndex();
    const bool shown = current >= 0 && box.itemText(current) == box.currentText();
    return shown ? current : positionOf(box, box.currentText());
}

QString selectedItem(const QComboBox& box) {
    return box.itemText(selectedPosition(box));
}

void selectItem(QComboBox& box, const QString& text) {
    box.setCurrentIndex(positionOf(box, text));
}

} // namespace velmora
