#pragma once

#include <QLineEdit>

namespace velmora {

/// A text field that posts "onTextDidChangeNotify", with itself as the sender, at every edit of the
/// user. Text that the program sets is not told. Main thread.
class customTextField : public QLineEdit {
    Q_OBJECT

public:
    static constexpr const char* kChangedNotification = "onTextDidChangeNotify";

    explicit customTextField(QWidget* parent = nullptr);
    void textDidChange();
};

} // namespace velmora
