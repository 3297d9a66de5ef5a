#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

// Files that are dragged here from another program.

namespace velmora {

/// The paths of the files of this machine among what is dragged, in their order.
QStringList localFiles(const QMimeData& drag);

/// Lets a drag of files be dropped here, as a copy, if they are `welcome`. Anything else that is
/// dragged stays unanswered.
void answerDrag(QDropEvent& event, bool welcome);

/// Tells the other program whether the files have been `taken`, as a copy.
void answerDrop(QDropEvent& event, bool taken);

} // namespace velmora
