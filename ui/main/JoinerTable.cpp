#include "JoinerTable.h"

#include "DroppedFiles.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace velmora {
JoinerTable::JoinerTable(QWidget* parent) : QTableView(parent) {
    setAcceptDrops(true);
}

void JoinerTable::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
    connect(model, &QAbstractItemModel::modelReset, this, &JoinerTable::showHintWhenEmpty);
    fitColumns();
    if (QWidget* const label = hint()) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents); // what is dropped on it as well
    }
    showHintWhenEmpty();
}

/// The first column takes what room the others, as wide as their usual content, leave.
void JoinerTable::fitColumns() {
    constexpr int kPadding = 24;
    constexpr int kRowPadding = 14;
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowPadding);
    QHeaderView& header = *horizontalHeader();
    header.setHighlightSections(false);
    header.setSectionResizeMode(0, QHeaderView::Stretch);
    const QStringList usual{"Format", "00:00:00.000", "0000x0000", "Frame rate", "Completed"};
    for (int section = 1; section < header.count() && section <= usual.size(); ++section) {
        const QString& content = usual[section - 1];
        header.resizeSection(section, fontMetrics().horizontalAdvance(content) + kPadding);
    }
}

void JoinerTable::setDropHandlers(std::function<unsigned()> validate,
                                  std::function<bool(const QStringList&)> accept) {
    validateDrop_ = std::move(validate);
    acceptDrop_ = std::move(accept);
}

int JoinerTable::selectedRow() const {
    if (!selectionModel()) {
        return -1;
    }
    const int current = currentIndex().row();
    if (current >= 0 && selectionModel()->isRowSelected(current)) {
        return current;
    }
    int last = -1;
    for (const QModelIndex& row : selectionModel()->selectedRows()) {
        last = std::max(last, row.row());
    }
    return last;
}

void JoinerTable::welcome(QDragMoveEvent& event) const {
    answerDrag(event, (validateDrop_() & static_cast<unsigned>(Qt::CopyAction)) != 0);
}

void JoinerTable::dragEnterEvent(QDragEnterEvent* event) {
    welcome(*event);
}

void JoinerTable::dragMoveEvent(QDragMoveEvent* event) {
    welcome(*event);
}

void JoinerTable::dropEvent(QDropEvent* event) {
    answerDrop(*event, acceptDrop_(localFiles(*event->mimeData())));
}

void JoinerTable::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        Q_EMIT deletePressed();
    } else {
        QTableView::keyPressEvent(event);
    }
}

void JoinerTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    placeHint();
}

QWidget* JoinerTable::hint() const {
    return findChild<QWidget*>("mAddFileToolTipJoiner");
}

void JoinerTable::placeHint() {
    if (QWidget* const label = hint()) {
        label->setGeometry(viewport()->geometry());
    }
}

void JoinerTable::showHintWhenEmpty() {
    if (QWidget* const label = hint()) {
        label->setVisible(model()->rowCount() == 0);
    }
}

} // namespace velmora
