#pragma once

#include <QTableView>

#include <functional>

namespace velmora {

/// The joiner's list: files can be dropped on it anywhere, and while it has no rows it shows its
/// child label "mAddFileToolTipJoiner". Main thread.
class JoinerTable : public QTableView {
    Q_OBJECT

public:
    explicit JoinerTable(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// What is asked whether a drag of files may be dropped (the operations it may do, as bits),
    /// and whether the dropped files were taken.
    void setDropHandlers(std::function<unsigned()> validate,
                         std::function<bool(const QStringList&)> accept);
    /// The row selected last that still is; -1 when none is.
    int selectedRow() const;

Q_SIGNALS:
    void deletePressed();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* hint() const;
    void welcome(QDragMoveEvent& event) const;
    void fitColumns();
    void placeHint();
    void showHintWhenEmpty();

    std::function<unsigned()> validateDrop_ = [] { return 0U; };
    std::function<bool(const QStringList&)> acceptDrop_ = [](const QStringList&) { return false; };
};

} // namespace velmora
