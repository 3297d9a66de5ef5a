#include "JoinerTableModel.h"

#include "JoinerList.h"

#include <array>

namespace velmora {
namespace {

struct Column {
    const char* identifier;
    const char* title;
    Qt::AlignmentFlag alignment;
};

constexpr std::array<Column, 6> kColumns{{
    {"fileSource", "File", Qt::AlignLeft},
    {"videoFormat", "Format", Qt::AlignLeft},
    {"duration", "Length", Qt::AlignRight},
    {"videoSize", "Size", Qt::AlignRight},
    {"videoQuality", "Frame rate", Qt::AlignRight},
    {"status", "Status", Qt::AlignLeft},
}};

const Column& columnAt(int section) {
    return kColumns.at(static_cast<std::size_t>(section));
}

} // namespace

JoinerTableModel::JoinerTableModel(const JoinerList& list, QObject* parent)
    : QAbstractTableModel(parent), list_(list) {}

void JoinerTableModel::reloadData() {
    beginResetModel();
    rows_ = list_.rowCount();
    endResetModel();
}

int JoinerTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int JoinerTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kColumns.size());
}

QVariant JoinerTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const Column& column = columnAt(index.column());
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::Alignment(column.alignment | Qt::AlignVCenter));
    }
    // A path may be too long for its column.
    const bool isPathTip = role == Qt::ToolTipRole && index.column() == 0;
    if (role == Qt::DisplayRole || isPathTip) {
        return list_.cell(column.identifier, index.row());
    }
    return {};
}

QVariant JoinerTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    if (role == Qt::DisplayRole) {
        return QString(columnAt(section).title);
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::Alignment(columnAt(section).alignment | Qt::AlignVCenter));
    }
    return {};
}

} // namespace velmora
