#include "adapters/linux/tray/linux_status_item.h"

#include <QString>
#include <QStringList>
#include <cmath>
#include <utility>

#include "adapters/linux/tray/screen_points.h"
#include "platform/input_events.h"

namespace plemora {

namespace {

constexpr int restartPatience = 700;  // milliseconds
constexpr int paintPatience = 1000;

QStringList desktopNames() {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts);
}

/// Hosts that open the menu on a left click when there is one.
bool opensMenuOnClick() {
  const QStringList names = desktopNames();
  return names.contains("GNOME") || names.contains("Unity");
}

/// Desktops whose panel is dark, whatever colour scheme is chosen.
bool hasDarkPanel() {
  return opensMenuOnClick();
}

/// What can be told apart in a tray: 1 % of the volume.
SymbolImage visible(SymbolImage image) {
  if (image.variableValue) {
    image.variableValue = std::round(*image.variableValue * 100) / 100;
  }
  return image;
}

}  // namespace

LinuxStatusItem::LinuxStatusItem(QDBusConnection bus, Appearance& appearance,
                                 StatusItemOptions options, StatusItemHandlers handlers)
    : appearance_(appearance),
      options_(std::move(options)),
      handlers_(std::move(handlers)),
      x11_(X11Link::open()),
      place_(x11_.get()),
      menu_(bus, [this] { return hostMenu(); }),
      notifier_(bus, notifierHandlers()),
      link_(bus, [this](bool isShown) { hostChanged(isShown); }) {
  patience_.setSingleShot(true);
  patience_.setInterval(restartPatience);
  QObject::connect(&patience_, &QTimer::timeout, [this] { useX11Tray(); });
  afterPaint_.setSingleShot(true);
  afterPaint_.setInterval(paintPatience);
  QObject::connect(&afterPaint_, &QTimer::timeout, [this] { followShade(); });
  appearanceChange_ = appearance_.observe([this](bool) {
    followShade();
    afterPaint_.start();
  });
  shade_ = shade();
}

StatusNotifierItem::Handlers LinuxStatusItem::notifierHandlers() {
  const auto report = [this](StatusButtonEvent event) {
    return [this, event](QPoint place) {
      place_.clicked(place);
      clicked(event);
    };
  };
  return {report(StatusButtonEvent::leftMouseDown), report(StatusButtonEvent::middleMouseDown),
          report(StatusButtonEvent::rightMouseDown), [this](int steps) { scrolled(steps); }};
}

std::vector<MenuItem> LinuxStatusItem::hostMenu() {
  std::vector<MenuItem> items = handlers_.menu ? handlers_.menu() : std::vector<MenuItem>();
  if (!items.empty() && !opensMenuOnClick()) {
    items.erase(items.begin());  // a left click opens the mixer
  }
  return items;
}

void LinuxStatusItem::setImage(const SymbolImage& image) {
  if (visible(image) != image_) {
    image_ = visible(image);
    draw();
  }
}

void LinuxStatusItem::setHighlighted(bool isHighlighted) {
  isHighlighted_ = isHighlighted;
  if (xembed_) {
    xembed_->setHighlighted(isHighlighted);
  }
}

std::optional<Rect> LinuxStatusItem::frame() {
  const std::optional<QRect> pixels = xembed_           ? xembed_->frame()
                                      : link_.isShown() ? place_.frame()
                                                        : std::nullopt;
  return pixels ? std::optional(pointsFromPixels(*pixels)) : std::nullopt;
}

std::optional<bool> LinuxStatusItem::isShown() const {
  if (link_.isShown()) {
    return true;
  }
  if (!link_.isKnown() || patience_.isActive()) {
    return std::nullopt;
  }
  return xembed_ && xembed_->isInTray();
}

void LinuxStatusItem::popUpMenu(std::vector<MenuItem> items) {
  std::vector<PopUpMenuItem> shown;
  for (MenuItem& item : items) {
    const bool isEnabled = static_cast<bool>(item.action);
    shown.push_back({std::move(item.title), std::move(item.action), isEnabled, false,
                     std::move(item.keyEquivalent)});
  }
  popUp_ = std::make_unique<PopUpMenu>(std::move(shown), [this] { popUp_.reset(); });
  popUp_->show(frame().value_or(Rect{}));
}

void LinuxStatusItem::clicked(StatusButtonEvent event) {
  const bool isWanted =
      event == StatusButtonEvent::middleMouseDown ||
      (options_.actionMask &
       (event == StatusButtonEvent::leftMouseDown ? leftMouseDownMask : rightMouseDownMask)) != 0;
  if (isWanted && handlers_.clicked) {
    handlers_.clicked(event);
  }
  // By now it is known which panel the item is in; what was clicked for comes first.
  afterPaint_.start();
}

void LinuxStatusItem::scrolled(int steps) {
  if (handlers_.scrolled) {
    handlers_.scrolled(steps);
  }
}

void LinuxStatusItem::hostChanged(bool isShown) {
  if (!isShown) {
    patience_.start();
    return;
  }
  patience_.stop();
  xembed_.reset();
  followShade();
  afterPaint_.start();
}

void LinuxStatusItem::useX11Tray() {
  if (!x11_ || xembed_) {
    return;
  }
  XembedIcon::Handlers handlers;
  handlers.clicked = [this](StatusButtonEvent event) { clicked(event); };
  handlers.scrolled = [this](int steps) { scrolled(steps); };
  handlers.draw = [this](int side, TrayShade shade) { return trayIcon(image_, side, shade); };
  xembed_ = std::make_unique<XembedIcon>(*x11_, "Plemora", shade_, std::move(handlers));
  xembed_->setHighlighted(isHighlighted_);
}

TrayShade LinuxStatusItem::shade() {
  if (!xembed_ && link_.isShown()) {
    if (const auto seen = place_.shade()) {
      return *seen;
    }
  }
  return hasDarkPanel() || appearance_.isDark() ? TrayShade::dark : TrayShade::light;
}

void LinuxStatusItem::followShade() {
  if (const TrayShade now = shade(); now != shade_) {
    shade_ = now;
    draw();
  }
}

void LinuxStatusItem::draw() {
  if (xembed_) {
    xembed_->setShade(shade_);
  }
  notifier_.setIcon([image = image_, shade = shade_] { return trayPixmaps(image, shade); });
  notifier_.setToolTip(trayText(image_, options_.accessibilityLabel));
}

}  // namespace plemora
