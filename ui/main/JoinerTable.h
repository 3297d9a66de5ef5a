#pragma once

#include <QTableView>

namespace velmora {

/// The joiner's list: files can be dropped on it anywhere, and while it has no rows it shows its
/// child label "mAddFileToolTipJoiner". Main thread.
class JoinerTable : public QTableView {
    Q_OBJECT

public:
    explicit JoinerTable(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// The row selected last that still is; -1 when none is.
    int selectedRow() const;

Q_SIGNALS:
    void filesDropped(const QStringList& paths);
    void deletePressed();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* hint() const;
    void fitColumns();
    void placeHint();
    void showHintWhenEmpty();
};

} // namespace velmora
