#include "OpenPanel.h"

#include <QFileDialog>

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

void finish(const QFileDialog& panel, int result, const OpenPanelCompletion& completion) {
    if (result != QDialog::Accepted) {
        completion(0, {});
        return;
    }
    lastFolder() = panel.directory().absolutePath();
    completion(1, panel.selectedFiles());
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
