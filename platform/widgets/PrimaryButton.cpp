#include "PrimaryButton.h"

#include "ProgramColours.h"

#include <QPushButton>

namespace velmora {

void makePrimary(QPushButton& button) {
    button.setStyleSheet(
        withProgramColours("QPushButton { background: @accent; color: white; border: 2px solid "
                           "@accent; border-radius: 4px; padding: 4px 16px; }"
                           "QPushButton:hover { background: @accent-hovered; }"
                           "QPushButton:pressed { background: @accent-pressed; }"
                           "QPushButton:focus { border-color: palette(text); }"
                           "QPushButton:disabled { background: palette(mid); "
                           "border-color: palette(mid); color: palette(window); }"));
}

} // namespace velmora
