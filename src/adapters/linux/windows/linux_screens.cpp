#include "adapters/linux/windows/linux_screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <optional>
#include <utility>

#include "adapters/linux/windows/screen_space.h"

namespace plemora {

namespace {

/// Virtual and remote displays report 0, or rates that no display has.
double plausibleRate(double rate) {
  return rate >= 20 && rate <= 500 ? rate : 60;
}

}  // namespace

LinuxScreens::LinuxScreens() {
  for (QScreen* screen : QGuiApplication::screens()) {
    watch(screen);
  }
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen* screen) {
    watch(screen);
    refresh();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, [this](QScreen* screen) {
    ids_.erase(screen);
    refresh();
  });
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_,
                   [this] { refresh(); });
  refresh();
}

LinuxScreens::~LinuxScreens() = default;

void LinuxScreens::watch(QScreen* screen) {
  ids_[screen] = nextID_++;
  const auto changed = [this] { refresh(); };
  QObject::connect(screen, &QScreen::geometryChanged, &context_, changed);
  QObject::connect(screen, &QScreen::availableGeometryChanged, &context_, changed);
  QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, changed);
  QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, changed);
  QObject::connect(screen, &QScreen::refreshRateChanged, &context_, changed);
}

void LinuxScreens::setUsableArea(UsableArea usable) {
  usable_ = std::move(usable);
  refresh();
}

void LinuxScreens::refresh() {
  const ScreenSpace space = ScreenSpace::current();
  const QScreen* first = QGuiApplication::primaryScreen();
  std::vector<Screen> screens;
  for (const auto& [screen, id] : ids_) {
    // A removed screen is still listed while its removal is announced, and the other way round.
    if (!QGuiApplication::screens().contains(const_cast<QScreen*>(screen))) {
      continue;
    }
    QRect usable = screen->availableGeometry();
    if (usable_) {
      usable &= usable_(*screen);
    }
    const Screen record{id, space.toGlobal(QRectF(screen->geometry())),
                        space.toGlobal(QRectF(usable)), screen->devicePixelRatio(),
                        plausibleRate(screen->refreshRate())};
    screens.insert(screen == first ? screens.begin() : screens.end(), record);
  }
  if (screens != screens_.get()) {
    screens_.set(std::move(screens));
  }
}

QScreen* LinuxScreens::screen(int id) const {
  for (const auto& [screen, number] : ids_) {
    if (number == id) {
      return const_cast<QScreen*>(screen);
    }
  }
  return QGuiApplication::primaryScreen();
}

std::optional<int> LinuxScreens::screenShowing(const Rect& rect) const {
  std::optional<int> best;
  double most = 0;
  for (const Screen& screen : screens_.get()) {
    const Rect shared = screen.frame.intersection(rect);
    if (shared.width * shared.height > most) {
      most = shared.width * shared.height;
      best = screen.id;
    }
  }
  return best;
}

}  // namespace plemora
