#include "views/row_binding.h"

#include <utility>

namespace plemora {

RowBinding::RowBinding(PanelRow row, QObject* parent) : QObject(parent), row_(std::move(row)) {
  devices_.setDevices(row_.devices);
}

void RowBinding::setRow(PanelRow row) {
  row.kind = row_.kind;
  row.id = row_.id;
  // What moves all the time has a signal of its own, so that the rest of the row is left alone.
  setSlider(row.volume, row.isDimmed);
  if (row == row_) {
    return;
  }
  row_ = std::move(row);
  devices_.setDevices(row_.devices);
  emit changed();
}

void RowBinding::setSlider(float volume, bool isDimmed) {
  if (volume != row_.volume || isDimmed != row_.isDimmed) {
    row_.volume = volume;
    row_.isDimmed = isDimmed;
    emit sliderChanged();
  }
}

void RowBinding::setLevel(double level) {
  if (level != level_) {
    level_ = level;
    emit levelChanged();
  }
}

}  // namespace plemora
