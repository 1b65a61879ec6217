#include "views/panel_binding.h"

#include "views/qt_values.h"

namespace plemora {

PanelBinding::PanelBinding(PanelView& view, const ControlCenterLook& look)
    : view_(view), look_(look) {
  subscriptions_.push_back(view_.rows.subscribe([this](const PanelRows& rows) { showRows(rows); }));
  subscriptions_.push_back(
      view_.sliderChange.subscribe([this](const PanelView::SliderState& slider) {
        const auto kind =
            slider.id == PanelView::masterID ? PanelRowKind::master : PanelRowKind::app;
        for (int i = 0; i < rows_.rowCount(); ++i) {
          const PanelRow& row = rows_.at(i)->row();
          if (row.kind == kind && (kind == PanelRowKind::master || row.id == slider.id)) {
            rows_.at(i)->setSlider(slider.volume, slider.isDimmed);
          }
        }
      }));
  subscriptions_.push_back(
      view_.meters.subscribe([this](const LevelMeters::Levels& meters) { showMeters(meters); }));
  subscriptions_.push_back(view_.isDark.subscribe([this](bool) { emit isDarkChanged(); }));
  showRows(view_.rows.get());
}

QColor PanelBinding::trackColor() const {
  return toQColor(ControlSlider::trackColor(look_, isDark()));
}

void PanelBinding::showRows(const PanelRows& rows) {
  rows_.setRows(rows);
  // A row that is new, or that missed a reading, shows what is known.
  showMeters(view_.meters.get());
  updateHeight();
}

void PanelBinding::showMeters(const LevelMeters::Levels& meters) {
  for (int i = 0; i < rows_.rowCount(); ++i) {
    RowBinding* row = rows_.at(i);
    if (row->row().kind == PanelRowKind::app) {
      const auto found = meters.find(row->row().id);
      row->setLevel(found == meters.end() ? -1 : found->second);
    }
  }
}

void PanelBinding::updateHeight() {
  if (view_.height() != height_) {
    height_ = view_.height();
    bottomPadding_ = height_;
    for (const PanelRow& row : view_.rows.get()) {
      bottomPadding_ -= row.height;
    }
    emit heightChanged();
  }
}

void PanelBinding::setVisible(bool isVisible) {
  if (isVisible == isVisible_) {
    return;
  }
  // Rows that change while it is hidden appear without a show, and so does what hiding changes.
  if (isVisible) {
    view_.setVisible(true);
  }
  isVisible_ = isVisible;
  emit isVisibleChanged();
  if (!isVisible) {
    setShowsFocus(false);
    view_.setVisible(false);
  }
}

void PanelBinding::setShowsFocus(bool showsFocus) {
  if (showsFocus != showsFocus_) {
    showsFocus_ = showsFocus;
    emit showsFocusChanged();
  }
}

void PanelBinding::setMasterVolume(double volume) {
  view_.setMasterVolume(static_cast<float>(volume));
}

void PanelBinding::setMasterEditing(bool isEditing) {
  view_.setEditing(isEditing, PanelView::masterID);
}

void PanelBinding::setVolume(const QString& app, double volume) {
  view_.setVolume(static_cast<float>(volume), app.toStdString());
}

void PanelBinding::setEditing(const QString& app, bool isEditing) {
  view_.setEditing(isEditing, app.toStdString());
}

void PanelBinding::setOutput(const QString& app, const QString& device) {
  view_.setOutput(device.toStdString(), app.toStdString());
}

void PanelBinding::presentRoutes(const QRectF& inScene) {
  const Rect place{inScene.x(), inScene.y(), inScene.width(), inScene.height()};
  view_.presentRoutes(toScreen_ ? toScreen_(place) : place);
}

}  // namespace plemora
