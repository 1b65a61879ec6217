#pragma once

#include <QtQml/qqmlregistration.h>

#include <QAbstractListModel>
#include <vector>

#include "menubar/panel_row.h"

namespace plemora {

/// The devices of a list of outputs, for QML. Rows of devices that stay are updated in place. Main
/// thread.
class DeviceListModel : public QAbstractListModel {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  using QAbstractListModel::QAbstractListModel;

  /// Of devices with the same UID the first counts.
  void setDevices(const std::vector<DeviceEntry>& devices);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

 private:
  std::vector<DeviceEntry> devices_;
};

}  // namespace plemora
