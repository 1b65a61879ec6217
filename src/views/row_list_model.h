#pragma once

#include <QAbstractListModel>
#include <memory>
#include <string>
#include <vector>

#include "views/row_binding.h"

namespace plemora {

/// The rows of the panel, for QML. Each is one object for as long as the panel lists it; a change
/// of its values tells that object alone. Main thread.
class RowListModel : public QAbstractListModel {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  using QAbstractListModel::QAbstractListModel;

  /// Rows are told apart by kind and id; of two alike the first counts.
  void setRows(const PanelRows& rows);

  RowBinding* at(int row) const { return rows_.at(static_cast<std::size_t>(row)).get(); }
  /// Null when there is none.
  RowBinding* find(PanelRowKind kind, const std::string& id) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

 private:
  /// Deleted when its delegate has certainly left the scene, which it does with a transition.
  struct Later {
    void operator()(RowBinding* row) const;
  };
  using Row = std::unique_ptr<RowBinding, Later>;

  std::vector<Row> rows_;
};

}  // namespace plemora
