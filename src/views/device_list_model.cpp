#include "views/device_list_model.h"

#include <algorithm>
#include <string>

#include "views/list_changes.h"

namespace plemora {

namespace {

enum Role { uidRole = Qt::UserRole, nameRole, symbolRole, isSelectedRole, rowHeightRole };

std::vector<DeviceEntry> withoutRepeats(const std::vector<DeviceEntry>& devices) {
  std::vector<DeviceEntry> result;
  for (const DeviceEntry& device : devices) {
    if (std::none_of(result.begin(), result.end(),
                     [&](const DeviceEntry& other) { return other.uid == device.uid; })) {
      result.push_back(device);
    }
  }
  return result;
}

std::vector<std::string> keys(const std::vector<DeviceEntry>& devices) {
  std::vector<std::string> result;
  for (const DeviceEntry& device : devices) {
    result.push_back(device.uid);
  }
  return result;
}

}  // namespace

void DeviceListModel::setDevices(const std::vector<DeviceEntry>& devices) {
  const std::vector<DeviceEntry> wanted = withoutRepeats(devices);
  const auto at = [this](int row) { return devices_.begin() + row; };
  const ListChanges<std::string> changes{
      .remove =
          [&](int row) {
            beginRemoveRows({}, row, row);
            devices_.erase(at(row));
            endRemoveRows();
          },
      .move =
          [&](int from, int to) {
            beginMoveRows({}, from, from, {}, to);
            std::rotate(at(to), at(from), at(from + 1));
            endMoveRows();
          },
      .insert =
          [&](int row) {
            beginInsertRows({}, row, row);
            devices_.insert(at(row), wanted[static_cast<std::size_t>(row)]);
            endInsertRows();
          },
      .update =
          [&](int row) {
            const DeviceEntry& value = wanted[static_cast<std::size_t>(row)];
            if (!(*at(row) == value)) {
              *at(row) = value;
              emit dataChanged(index(row), index(row));
            }
          },
  };
  std::vector<std::string> present = keys(devices_);
  changes.apply(present, keys(wanted));
}

int DeviceListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(devices_.size());
}

QVariant DeviceListModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const DeviceEntry& device = devices_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case uidRole:
      return QString::fromStdString(device.uid);
    case nameRole:
      return QString::fromStdString(device.name);
    case symbolRole:
      return QString::fromStdString(device.symbol);
    case isSelectedRole:
      return device.isSelected;
    case rowHeightRole:
      return device.height;
    default:
      return {};
  }
}

QHash<int, QByteArray> DeviceListModel::roleNames() const {
  return {{uidRole, "uid"},
          {nameRole, "name"},
          {symbolRole, "symbol"},
          {isSelectedRole, "isSelected"},
          {rowHeightRole, "rowHeight"}};
}

}  // namespace plemora
