#include "customTextField.h"

#include "NotificationCenter.h"

namespace velmora {

customTextField::customTextField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, &customTextField::textDidChange);
}

void customTextField::textDidChange() {
    NotificationCenter::defaultCenter().post(kChangedNotification, this);
}

} // namespace velmora
