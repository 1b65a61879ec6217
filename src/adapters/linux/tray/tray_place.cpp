#include "adapters/linux/tray/tray_place.h"

#include <algorithm>

namespace plemora {

namespace {

constexpr int usualThickness = 24;

/// None where as good as nothing is opaque: dark and light come out the same then.
std::optional<TrayShade> clearShade(const QImage& image) {
  const TrayShade guess = shadeOf(image, TrayShade::dark);
  return guess == shadeOf(image, TrayShade::light) ? std::optional(guess) : std::nullopt;
}

}  // namespace

QRect TrayPlace::squareIn(const QRect& panel, QPoint point) {
  const int side = std::min(panel.width(), panel.height());
  const auto start = [side](int at, int from, int length) {
    return std::clamp(at - side / 2, from, from + length - side);
  };
  return panel.width() >= panel.height()
             ? QRect(start(point.x(), panel.left(), panel.width()), panel.top(), side, side)
             : QRect(panel.left(), start(point.y(), panel.top(), panel.height()), side, side);
}

void TrayPlace::clicked(QPoint reported) {
  // The pointer is where the click was, in the server's own pixels, whatever the host makes of it;
  // but not when the item was chosen by a key.
  if (x11_) {
    if (const auto pointer = x11_->pointer(); pointer && panelAt(*pointer)) {
      click_ = pointer;
      return;
    }
  }
  if (!reported.isNull()) {
    click_ = reported;
  }
}

std::optional<QRect> TrayPlace::frame() {
  if (click_) {
    const auto panel = panelAt(*click_);
    // A panel that has become shorter with its screen still ends with the tray.
    if (const auto shown = panel ? panel : panelInLine(*click_)) {
      return squareIn(shown->rect, *click_);
    }
    return QRect(click_->x() - usualThickness / 2, click_->y() - usualThickness / 2, usualThickness,
                 usualThickness);
  }
  if (const auto panel = anyPanel()) {
    return squareIn(panel->rect, panel->rect.bottomRight());
  }
  return std::nullopt;
}

std::optional<TrayShade> TrayPlace::shade() {
  const auto panel = click_ ? panelAt(*click_) : anyPanel();
  if (!panel) {
    return std::nullopt;
  }
  const QImage own = x11_->picture(panel->window, QRect(QPoint(), panel->rect.size()));
  if (const auto shade = clearShade(own)) {
    return shade;
  }
  // Of a transparent panel, what the screen shows in its place.
  const QRect screen(0, 0, x11_->screen().width_in_pixels, x11_->screen().height_in_pixels);
  return clearShade(x11_->picture(x11_->screen().root, panel->rect & screen));
}

std::optional<TrayPlace::Panel> TrayPlace::panelAt(QPoint point) {
  std::optional<Panel> found;
  if (x11_) {
    for (const Panel& panel : x11_->docks()) {
      if (panel.rect.contains(point)) {
        found = panel;
      }
    }
  }
  return found;
}

std::optional<TrayPlace::Panel> TrayPlace::panelInLine(QPoint point) {
  if (x11_) {
    for (const Panel& panel : x11_->docks()) {
      const QRect& rect = panel.rect;
      if (rect.width() >= rect.height() ? point.y() >= rect.top() && point.y() <= rect.bottom()
                                        : point.x() >= rect.left() && point.x() <= rect.right()) {
        return panel;
      }
    }
  }
  return std::nullopt;
}

std::optional<TrayPlace::Panel> TrayPlace::anyPanel() {
  if (x11_) {
    const std::vector<Panel> panels = x11_->docks();
    return panels.empty() ? std::nullopt : std::optional(panels.front());
  }
  return std::nullopt;
}

}  // namespace plemora
