#pragma once

#include <QAbstractTableModel>

namespace velmora {

class JoinerList;

/// What the joiner's table shows, asked of the list as it is needed. Rows are counted by
/// reloadData() only. Main thread.
class JoinerTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    /// The list must outlive the model; it is asked nothing yet.
    explicit JoinerTableModel(const JoinerList& list, QObject* parent = nullptr);

    void reloadData();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    const JoinerList& list_;
    int rows_ = 0;
};

} // namespace velmora
