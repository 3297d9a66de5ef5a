#pragma once

#include <QAbstractTableModel>

namespace velmora {

class MainController;

/// What the joiner's table shows, asked of its data source as it is needed. Rows are counted by
/// reloadData() only. Main thread.
class JoinerTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    /// The data source must outlive the model.
    explicit JoinerTableModel(const MainController& dataSource, QObject* parent = nullptr);

    void reloadData();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    const MainController& dataSource_;
    int rows_ = 0;
};

} // namespace velmora
