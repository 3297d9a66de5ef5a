#pragma once

#include <QColor>
#include <QString>

namespace velmora {

// The colours that the program's windows have in common.
inline constexpr QColor kAccent(0x1F, 0x6F, 0xB2);
inline constexpr QColor kAccentHovered(0x1A, 0x61, 0x9D);
inline constexpr QColor kAccentPressed(0x15, 0x50, 0x84);
inline constexpr QColor kInk(0x12, 0x32, 0x4A);

/// The style sheet with the colours put in where it names them: "@accent", "@accent-hovered",
/// "@accent-pressed" and "@ink".
QString withProgramColours(QString styleSheet);

} // namespace velmora
