#include "OpenPanel.h"

#include <QFileDialog>
#include <QMetaObject>

#include <utility>

namespace velmora {
namespace {

/// Where the last choice was made; empty before the first.
QString& lastFolder() {
    static QString folder;
    return folder;
}

QFileDialog::FileMode modeFor(OpenPanelChoice choice) {
    switch (choice) {
    case OpenPanelChoice::File:
        return QFileDialog::ExistingFile;
    case OpenPanelChoice::Files:
        return QFileDialog::ExistingFiles;
    case OpenPanelChoice::Folder:
        break;
    }
    return QFileDialog::Directory;
}

/// Blocks `parent` as its panel did, but never gets onto the screen.
QWidget* blockInstead(QWidget& parent) {
    auto* const block = new QWidget(&parent, Qt::Dialog); // NOLINT(cppcoreguidelines-owning-memory)
    block->setAttribute(Qt::WA_DontShowOnScreen);
    block->setAttribute(Qt::WA_QuitOnClose, false);
    block->setWindowModality(Qt::WindowModal);
    block->show();
    return block;
}

/// The panel tells that the user is done while it still handles the event that says so. What is
/// called may run events of its own, which that does not allow for, so it is called afterwards.
/// Until then the window stays blocked: nothing comes in between.
void callLater(QWidget& parent, std::function<void()> action) {
    QWidget* const block = blockInstead(parent);
    QMetaObject::invokeMethod(
        block,
        [block, act = std::move(action)] {
            block->hide();
            block->deleteLater();
            act();
        },
        Qt::QueuedConnection);
}

void finish(const QFileDialog& panel, int result, const OpenPanelCompletion& completion) {
    QWidget& parent = *panel.parentWidget();
    if (result != QDialog::Accepted) {
        return callLater(parent, [completion] { completion(0, {}); });
    }
    lastFolder() = panel.directory().absolutePath();
    callLater(parent, [completion, paths = panel.selectedFiles()] { completion(1, paths); });
}

} // namespace

void beginOpenPanel(QWidget& parent, OpenPanelChoice choice, const QString& folder,
                    OpenPanelCompletion completion) {
    auto* const panel = new QFileDialog(&parent); // NOLINT(cppcoreguidelines-owning-memory)
    panel->setObjectName("openPanel");
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(modeFor(choice));
    panel->setOption(QFileDialog::ShowDirsOnly, choice == OpenPanelChoice::Folder);
    panel->setDirectory(lastFolder().isEmpty() ? folder : lastFolder());
    QObject::connect(
        panel, &QDialog::finished, panel,
        [panel, done = std::move(completion)](int result) { finish(*panel, result, done); });
    panel->open();
}

} // namespace velmora
