#include "views/row_list_model.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <algorithm>
#include <map>
#include <random>

namespace plemora {
namespace {

PanelRow appRow(int number) {
  PanelRow row;
  row.kind = PanelRowKind::app;
  row.id = "app" + std::to_string(number);
  row.title = row.id;
  row.height = 38;
  return row;
}

std::vector<std::string> ids(const RowListModel& model) {
  std::vector<std::string> result;
  for (int i = 0; i < model.rowCount(); ++i) {
    result.push_back(model.at(i)->row().id);
  }
  return result;
}

TEST(RowListModelTest, AnyListBecomesAnyOtherAndRowsThatStayAreTheSame) {
  RowListModel model;
  const QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    PanelRows rows;
    for (int i = 0; i < 12; ++i) {
      if (random() % 2) {
        rows.push_back(appRow(i));
        rows.back().volume = static_cast<float>(random() % 100) / 100;
      }
    }
    std::shuffle(rows.begin(), rows.end(), random);
    std::map<std::string, RowBinding*> before;
    for (int i = 0; i < model.rowCount(); ++i) {
      before[model.at(i)->row().id] = model.at(i);
    }
    model.setRows(rows);
    std::vector<std::string> expected;
    for (const PanelRow& row : rows) {
      expected.push_back(row.id);
      RowBinding* now = model.find(row.kind, row.id);
      ASSERT_NE(now, nullptr);
      EXPECT_EQ(now->row(), row);
      if (before.contains(row.id)) {
        EXPECT_EQ(now, before[row.id]);
      }
    }
    ASSERT_EQ(ids(model), expected);
  }
}

TEST(RowListModelTest, AChangeTellsItsRowAloneAndOnlyWhatMoved) {
  RowListModel model;
  PanelRows rows{appRow(1), appRow(2)};
  rows.push_back(appRow(2));  // a repeated one is passed over
  model.setRows(rows);
  ASSERT_EQ(model.rowCount(), 2);
  QSignalSpy changed(model.at(0), &RowBinding::changed);
  QSignalSpy moved(model.at(0), &RowBinding::sliderChanged);
  QSignalSpy other(model.at(1), &RowBinding::changed);
  QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
  QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
  rows[0].volume = 0.25f;
  model.setRows(rows);
  EXPECT_EQ(changed.count(), 0);
  EXPECT_EQ(moved.count(), 1);
  rows[0].isMuted = true;
  model.setRows(rows);
  model.setRows(rows);
  EXPECT_EQ(changed.count(), 1);
  EXPECT_EQ(moved.count(), 1);
  EXPECT_EQ(other.count() + inserted.count() + reset.count(), 0);
}

}  // namespace
}  // namespace plemora
