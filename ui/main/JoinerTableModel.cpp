#include "JoinerTableModel.h"

#include "MainController.h"

#include <array>

namespace velmora {
namespace {

struct Column {
    const char* identifier;
    const char* title;
    Qt::AlignmentFlag alignment;
};

constexpr std::array<Column, 6> columns{{
    {"fileSource", "File", Qt::AlignLeft},
    {"videoFormat", "Format", Qt::AlignLeft},
    {"duration", "Length", Qt::AlignRight},
    {"videoSize", "Size", Qt::AlignRight},
    {"videoQuality", "Frame rate", Qt::AlignRight},
    {"status", "Status", Qt::AlignLeft},
}};

const Column& columnAt(int section) {
    return columns.at(static_cast<std::size_t>(section));
}

} // namespace

JoinerTableModel::JoinerTableModel(const MainController& dataSource, QObject* parent)
    : QAbstractTableModel(parent), dataSource_(dataSource) {}

void JoinerTableModel::reloadData() {
    beginResetModel();
    rows_ = dataSource_.numberOfRowsInTableView();
    endResetModel();
}

int JoinerTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int JoinerTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant JoinerTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const Column& column = columnAt(index.column());
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(column.alignment | Qt::AlignVCenter));
    // A path may be too long for its column.
    const bool isPathTip = role == Qt::ToolTipRole && index.column() == 0;
    if (role == Qt::DisplayRole || isPathTip)
        return dataSource_.tableViewObjectValueForTableColumn(column.identifier, index.row());
    return {};
}

QVariant JoinerTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return QString(columnAt(section).title);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(columnAt(section).alignment | Qt::AlignVCenter));
    return {};
}

} // namespace velmora
