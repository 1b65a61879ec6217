#include "views/row_list_model.h"

#include <QTimer>
#include <algorithm>
#include <utility>

#include "views/list_changes.h"

namespace plemora {

namespace {

using Key = std::pair<PanelRowKind, std::string>;

constexpr int leavingMilliseconds = 2000;
constexpr int rowRole = Qt::UserRole;

Key keyOf(const PanelRow& row) {
  return {row.kind, row.id};
}

}  // namespace

void RowListModel::Later::operator()(RowBinding* row) const {
  QTimer::singleShot(leavingMilliseconds, row, &QObject::deleteLater);
}

void RowListModel::setRows(const PanelRows& rows) {
  std::vector<const PanelRow*> wanted;
  std::vector<Key> wantedKeys;
  for (const PanelRow& row : rows) {
    if (std::find(wantedKeys.begin(), wantedKeys.end(), keyOf(row)) == wantedKeys.end()) {
      wanted.push_back(&row);
      wantedKeys.push_back(keyOf(row));
    }
  }
  std::vector<Key> present;
  for (const Row& row : rows_) {
    present.push_back(keyOf(row->row()));
  }
  const auto place = [this](int row) { return rows_.begin() + row; };
  const auto value = [&](int row) { return *wanted[static_cast<std::size_t>(row)]; };
  const ListChanges<Key> changes{
      .remove =
          [&](int row) {
            beginRemoveRows({}, row, row);
            rows_.erase(place(row));
            endRemoveRows();
          },
      .move =
          [&](int from, int to) {
            beginMoveRows({}, from, from, {}, to);
            std::rotate(place(to), place(from), place(from + 1));
            endMoveRows();
          },
      .insert =
          [&](int row) {
            beginInsertRows({}, row, row);
            rows_.insert(place(row), Row(new RowBinding(value(row), this)));
            endInsertRows();
          },
      .update = [&](int row) { at(row)->setRow(value(row)); },
  };
  changes.apply(present, wantedKeys);
}

RowBinding* RowListModel::find(PanelRowKind kind, const std::string& id) const {
  const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) {
    return row->row().kind == kind && row->row().id == id;
  });
  return found == rows_.end() ? nullptr : found->get();
}

int RowListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
  if (role != rowRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  return QVariant::fromValue(at(index.row()));
}

QHash<int, QByteArray> RowListModel::roleNames() const {
  return {{rowRole, "row"}};
}

}  // namespace plemora
