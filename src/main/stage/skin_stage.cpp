#include "main/stage/skin_stage.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "main/stage/stage_bubbles.h"

namespace plemora {

namespace {

constexpr double seamReach = 12;
constexpr double edgeReach = 4;

Scenario scenarioOf(const SkinDesktop& desktop, SkinStage::Module module) {
  Scenario scenario;
  scenario.stage.screens = {ScenarioScreen{}};
  scenario.stage.screens->front().scale = desktop.scale;
  scenario.stage.isDark = desktop.isDark;
  scenario.stage.systemVersion = desktop.system;
  scenario.stage.layout =
      module == SkinStage::Module::programs ? ScenarioLayout::replaced : ScenarioLayout::fresh;
  ScenarioDevice device;
  device.uid = "output";
  device.name = desktop.isHeadphones ? "AirPods Pro" : "Speakers";
  device.transport = desktop.isHeadphones ? "bluetooth" : "built-in";
  device.volume = desktop.volume;
  scenario.stage.devices = {device};
  for (const auto& [key, value] : desktop.defaults) {
    scenario.stage.defaults[key] = value;
  }
  if (desktop.isBare) {
    scenario.stage.defaults["debugBareSkin"] = true;
  }
  return scenario;
}

/// Sums differences of pixels.
class Mean {
 public:
  void add(QRgb one, QRgb other) {
    sum_ += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
            std::abs(qBlue(one) - qBlue(other));
    count_ += 3;
  }
  double value() const { return count_ > 0 ? static_cast<double>(sum_) / count_ : 0; }

 private:
  long long sum_ = 0;
  int count_ = 0;
};

}  // namespace

SkinStage::SkinStage(const SkinDesktop& desktop, Module module)
    : world_(scenarioOf(desktop, module)),
      show_(world_.desktop, StageShow::Time::virtualTime),
      program_(world_, {show_.windows(),
                        [this](PanelView& view, const ControlCenterLook& look) {
                          return show_.makeContent(view, look);
                        },
                        [this](SkinState& state, const ControlCenterLook& look) {
                          return show_.makeModuleView(state, look);
                        },
                        [this](const ControlCenterLook&) { return show_.onboardingContents(); },
                        &resources_}) {
  if (desktop.hasBubbles) {
    StageBubbles::install(resources_, world_.files);
  }
  show_.setWallpaper(desktop.wallpaper);
  show_.setShowsPointer(false);
  if (module == Module::programs) {
    program_.start();
    // Control Center comes back from the refresh of its controls.
    world_.desktop.advance(6);
  }
  world_.desktop.controlCenter.open();
  show_.advance(1);
}

Rect SkinStage::moduleFrame() {
  const StageControlCenter& center = world_.desktop.controlCenter;
  Rect frame;
  for (const StageTile& tile : center.shownTiles()) {
    const bool isPrograms = tile.control && tile.control->containerID == ProgramOnStage::bundleID;
    if (tile.module != "Sound" && !isPrograms) {
      continue;
    }
    const Rect place = center.panel().tile(tile);
    const double right = std::max(frame.isEmpty() ? place.maxX() : frame.maxX(), place.maxX());
    frame = {frame.isEmpty() ? place.x : std::min(frame.x, place.x), place.y, 0, place.height};
    frame.width = right - frame.x;
  }
  return frame;
}

QImage SkinStage::picture() {
  const Screen& screen = world_.desktop.screens.screens().get().front();
  const Rect seen = world_.desktop.space.flipped(moduleFrame()).inset(-margin, -margin);
  const QRectF pixels(seen.x * screen.scale, seen.y * screen.scale, seen.width * screen.scale,
                      seen.height * screen.scale);
  return show_.picture(screen.id).copy(pixels.toRect());
}

SkinDifference SkinStage::difference(const QImage& one, const QImage& other, double scale) {
  Mean seam;
  Mean edges;
  Mean inside;
  Mean around;
  for (int y = 0; y < std::min(one.height(), other.height()); ++y) {
    for (int x = 0; x < std::min(one.width(), other.width()); ++x) {
      // From the nearest edge of the module, in points, negative outside.
      const double px = (x + 0.5) / scale;
      const double py = (y + 0.5) / scale;
      const double width = one.width() / scale;
      const double height = one.height() / scale;
      const double depth = std::min({px, py, width - px, height - py}) - margin;
      Mean& part = depth < 0                              ? around
                   : std::abs(px - width / 2) < seamReach ? seam
                   : depth < edgeReach                    ? edges
                                                          : inside;
      part.add(one.pixel(x, y), other.pixel(x, y));
    }
  }
  return {seam.value(), edges.value(), inside.value(), around.value()};
}

}  // namespace plemora
