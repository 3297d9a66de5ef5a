#include "PrimaryButton.h"

#include <QPushButton>

namespace velmora {

void makePrimary(QPushButton& button) {
    button.setStyleSheet("QPushButton { background: #1F6FB2; color: white; border: 2px solid "
                         "#1F6FB2; border-radius: 4px; padding: 4px 16px; }"
                         "QPushButton:hover { background: #1A619D; }"
                         "QPushButton:pressed { background: #155084; }"
                         "QPushButton:focus { border-color: palette(text); }"
                         "QPushButton:disabled { background: palette(mid); "
                         "border-color: palette(mid); color: palette(window); }");
}

} // namespace velmora
