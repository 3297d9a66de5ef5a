#pragma once

#include <QAbstractTableModel>

#include <memory>

namespace velmora {

struct NodeInfo;

/// A table's data source over the shared file list and the current setting; has a check box for
/// each item. It is not told when those change: reloadData() shows it. Main thread.
class TableViewController : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    int numberOfRowsInTableView() const;
    /// Invalid where there is no value: an unknown column, no item at that row, no such state.
    QVariant tableViewObjectValueForTableColumn(const QString& identifier, int row) const;
    /// The title of the cell; empty for a cell that has only its value.
    QString tableViewWillDisplayCell(const QString& identifier, int row) const;
    void tableViewSetObjectValue(const QVariant& value, const QString& identifier, int row);
    void reloadData();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    static std::shared_ptr<NodeInfo> itemAt(int row);
};

} // namespace velmora
