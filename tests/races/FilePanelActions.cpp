#include "Action.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include <array>

namespace velmora::test {
namespace {

template <class Window> Window* inFront() {
    return qobject_cast<Window*>(QApplication::activeModalWidget());
}

bool isForJoiner(const Round& round) {
    return round.controller.selectedSegmentLabel() == "Video Joiner";
}

/// The cutter would load two files for ever. The panel's list may have more selected than are
/// named.
void chooseAtMostOne(QFileDialog& panel) {
    panel.setFileMode(QFileDialog::ExistingFile);
    auto* const list = panel.findChild<QAbstractItemView*>("listView");
    if (list && panel.selectedFiles().size() > 1) {
        list->clearSelection();
    }
}

/// The file panel in front, if there is one. Several files are chosen for the joiner only.
QFileDialog* filePanel(const Round& round) {
    auto* const panel = inFront<QFileDialog>();
    if (panel && panel->fileMode() != QFileDialog::Directory && !isForJoiner(round)) {
        chooseAtMostOne(*panel);
    }
    return panel;
}

QString namesFor(Round& round) {
    QString names = '"' + round.files.any(round.random) + '"';
    for (int more = isForJoiner(round) ? round.random.below(3) : 0; more > 0; --more) {
        names += " \"" + round.files.any(round.random) + '"';
    }
    return names;
}

/// Where the names have been put; null without a file panel.
QLineEdit* nameFilesIn(Round& round) {
    const auto* const panel = filePanel(round);
    auto* const name = panel ? panel->findChild<QLineEdit*>("fileNameEdit") : nullptr;
    if (name) {
        const bool isFolder = panel->fileMode() == QFileDialog::Directory;
        name->setText(isFolder ? round.files.outputs() : namesFor(round));
    }
    return name;
}

void nameFiles(Round& round) {
    nameFilesIn(round);
}

void nameFilesAndReturn(Round& round) {
    QLineEdit* const name = nameFilesIn(round);
    if (name && filePanel(round)) { // naming selects as well
        QTest::keyClick(name, Qt::Key_Return);
    }
}

void pressDialogButton(const Round& round, QDialogButtonBox::StandardButton which) {
    const auto* const panel = filePanel(round);
    const auto* const buttons = panel ? panel->findChild<QDialogButtonBox*>() : nullptr;
    auto* const button = buttons ? buttons->button(which) : nullptr;
    if (button && button->isEnabled()) {
        button->click();
    }
}

void nameFilesAndPressOpen(Round& round) {
    nameFiles(round);
    pressDialogButton(round, QDialogButtonBox::Open);
}

void pressCancel(Round& round) {
    pressDialogButton(round, QDialogButtonBox::Cancel);
}

void closeBox(Round& /*round*/) {
    if (auto* const box = inFront<QDialog>()) {
        box->close();
    }
}

/// Not Delete: a file panel would delete files.
void anyKey(Round& round) {
    constexpr std::array keys{Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab};
    filePanel(round); // sees to it that Return chooses one file for the cutter
    if (const QWidget* const window = inFront<QWidget>(); window && window->windowHandle()) {
        QTest::keyClick(window->windowHandle(), round.random.oneOf(keys));
    }
}

void lookOn(Round& round) {
    round.pauseMs = round.random.below(30);
}

void pressAnyButton(Round& round) {
    const auto* const box = inFront<QMessageBox>();
    if (box && !box->buttons().isEmpty()) {
        QTest::mouseClick(round.random.oneOf(box->buttons()), Qt::LeftButton);
    }
}

void popUpKey(Round& round) {
    constexpr std::array keys{Qt::Key_Down, Qt::Key_Up, Qt::Key_Return, Qt::Key_Escape};
    if (QWidget* const popUp = QApplication::activePopupWidget()) {
        QTest::keyClick(popUp, round.random.oneOf(keys));
    }
}

void closePopUp(Round& /*round*/) {
    if (QWidget* const popUp = QApplication::activePopupWidget()) {
        popUp->close();
    }
}

constexpr std::array kFilePanel{
    Action{"names files and presses Return", 5, nameFilesAndReturn},
    Action{"names files and presses Open", 5, nameFilesAndPressOpen},
    Action{"names files", 1, nameFiles},
    Action{"presses Cancel in the file panel", 1, pressCancel},
    Action{"closes the file panel", 1, closeBox},
    Action{"presses a key in the file panel", 2, anyKey},
    Action{"looks at the file panel", 1, lookOn},
};
constexpr std::array kMessage{
    Action{"presses a button of a message", 4, pressAnyButton},
    Action{"presses a key at a message", 2, anyKey},
    Action{"closes a message", 1, closeBox},
    Action{"reads a message", 1, lookOn},
};
constexpr std::array kPopUp{
    Action{"presses a key in a list", 3, popUpKey},
    Action{"closes a list", 1, closePopUp},
};

} // namespace

Actions filePanelActions() {
    return kFilePanel;
}

Actions messageActions() {
    return kMessage;
}

Actions popUpActions() {
    return kPopUp;
}

} // namespace velmora::test
