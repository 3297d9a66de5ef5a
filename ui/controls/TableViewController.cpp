#include "TableViewController.h"

#include "CommonAction.h"
#include "SharedState.h"

#include <QFileInfo>

#include <array>

namespace velmora {
namespace {

struct Column {
    const char* identifier;
    const char* title;
};

constexpr std::array<Column, 5> kColumns{{{"inputFile", "File"},
                                          {"startTime", "Start"},
                                          {"endTime", "End"},
                                          {"format", "Format"},
                                          {"state", "State"}}};

QString identifierOf(const QModelIndex& index) {
    return kColumns.at(static_cast<std::size_t>(index.column())).identifier;
}

/// The stored number as it stands, whatever its unit; one that 32 bits cannot hold counts 0.
QString secondsText(float time) {
    constexpr float kMost = 2147483520.0F; // the largest float that an int32 can hold
    const bool fits = time >= -kMost && time <= kMost;
    return CommonAction::timeFormatBySecond(fits ? static_cast<std::int32_t>(time) : 0);
}

/// No value, and not an empty one, for a state that stands for no result.
QVariant stateValue(std::int32_t state) {
    const QString text = stateText(state);
    return text.isNull() ? QVariant() : text;
}

} // namespace

std::shared_ptr<NodeInfo> TableViewController::itemAt(int row) {
    if (row < 0 || row >= CommonAction::getCount()) {
        return nullptr;
    }
    return (*sharedFileList)[static_cast<std::size_t>(row)];
}

// A table asks its data source as an object, whatever that looks at.
// NOLINTBEGIN(readability-convert-member-functions-to-static)
int TableViewController::numberOfRowsInTableView() const {
    return CommonAction::getCount();
}

QVariant TableViewController::tableViewObjectValueForTableColumn(const QString& identifier,
                                                                 int row) const {
    const std::shared_ptr<NodeInfo> item = itemAt(row);
    if (!item) {
        return {};
    }
    if (identifier == "inputFile") {
        return item->isSeleted != 0;
    }
    if (identifier == "startTime") {
        return secondsText(item->startTime);
    }
    if (identifier == "endTime") {
        return secondsText(item->endTime);
    }
    if (identifier == "format") {
        return currentSetting ? currentSetting->profileName : QVariant();
    }
    if (identifier == "state") {
        return stateValue(item->converteState);
    }
    return {};
}

QString TableViewController::tableViewWillDisplayCell(const QString& identifier, int row) const {
    const std::shared_ptr<NodeInfo> item = itemAt(row);
    if (!item || identifier != "inputFile") {
        return {};
    }
    return QFileInfo(item->inputFile).fileName();
}
// NOLINTEND(readability-convert-member-functions-to-static)

void TableViewController::tableViewSetObjectValue(const QVariant& value, const QString& identifier,
                                                  int row) {
    const std::shared_ptr<NodeInfo> item = itemAt(row);
    if (!item || identifier != "inputFile") {
        return;
    }
    item->isSeleted = value.toBool() ? 1 : 0;
    reloadData();
}

void TableViewController::reloadData() {
    beginResetModel();
    endResetModel();
}

int TableViewController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : numberOfRowsInTableView();
}

int TableViewController::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kColumns.size());
}

QVariant TableViewController::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const QString identifier = identifierOf(index);
    const QVariant value = tableViewObjectValueForTableColumn(identifier, index.row());
    const bool isCheckBox = identifier == "inputFile";
    if (role == Qt::CheckStateRole && isCheckBox && value.isValid()) {
        return value.toBool() ? Qt::Checked : Qt::Unchecked;
    }
    if (role == Qt::DisplayRole) {
        return isCheckBox ? tableViewWillDisplayCell(identifier, index.row()) : value;
    }
    return {};
}

bool TableViewController::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole || identifierOf(index) != "inputFile") {
        return false;
    }
    tableViewSetObjectValue(value.toInt() == Qt::Checked, "inputFile", index.row());
    return true;
}

QVariant TableViewController::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= columnCount()) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    return kColumns.at(static_cast<std::size_t>(section)).title;
}

Qt::ItemFlags TableViewController::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == 0 ? flags | Qt::ItemIsUserCheckable : flags;
}

} // namespace velmora
