#pragma once

class QPushButton;

namespace velmora {

/// Gives the button of a window's main action the program's accent colour.
void makePrimary(QPushButton& button);

} // namespace velmora
