#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace velmora {

enum class OpenPanelChoice { File, Files, Folder };

/// `result` is 1 when the user has chosen, else 0 and there are no paths.
using OpenPanelCompletion = std::function<void(int result, const QStringList& paths)>;

/// Shows the desktop's panel for existing files or a folder over `parent`, which it blocks, and
/// returns at once. The completion is called from the event loop when the user is done and the
/// panel gone, never if `parent` is destroyed before; `parent` takes no input until then. The first
/// panel starts in `folder`, later ones where the last choice was made. The panel's objectName is
/// "openPanel". Main thread.
void beginOpenPanel(QWidget& parent, OpenPanelChoice choice, const QString& folder,
                    OpenPanelCompletion completion);

} // namespace velmora
