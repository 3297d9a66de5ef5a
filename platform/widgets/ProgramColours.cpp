#include "ProgramColours.h"

namespace velmora {

QString withProgramColours(QString styleSheet) {
    // The longer names come first, since the shorter one is their beginning.
    styleSheet.replace("@accent-hovered", kAccentHovered.name());
    styleSheet.replace("@accent-pressed", kAccentPressed.name());
    styleSheet.replace("@accent", kAccent.name());
    styleSheet.replace("@ink", kInk.name());
    return styleSheet;
}

} // namespace velmora
