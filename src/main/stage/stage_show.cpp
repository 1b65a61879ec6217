#include "main/stage/stage_show.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <utility>

#include "main/stage/scene_clock.h"
#include "views/callout_scene.h"
#include "views/helper_scene.h"
#include "views/module_scene.h"
#include "views/panel_scene.h"
#include "views/ripple_scene.h"
#include "views/setup_scene.h"

namespace plemora {

namespace {

constexpr double frameTime = 1.0 / 60;

}  // namespace

StageShow::StageShow(StageDesktop& desktop, Time time)
    : desktop_(desktop),
      sceneClock_(time == Time::virtualTime ? std::make_unique<SceneClock>() : nullptr),
      icons_(desktop.workspace),
      windows_(desktop.windows, desktop.mainQueue),
      compositor_(desktop, windows_) {
  QAccessible::setActive(true);  // how controls are found by their names
  icons_.update();
}

StageShow::~StageShow() = default;

double StageShow::mainScale() {
  const auto& screens = desktop_.screens.screens().get();
  return screens.empty() ? 1 : screens.front().scale;
}

std::shared_ptr<HostedView> StageShow::makeContent(PanelView& view, const ControlCenterLook& look) {
  auto scene = std::make_shared<PanelScene>(view, look);
  auto content = std::make_shared<StageContent>(scene, desktop_.clock, mainScale());
  scene->setScreenMapping([weak = std::weak_ptr(content)](const Rect& inScene) {
    const auto alive = weak.lock();
    return alive ? alive->onScreen(inScene) : inScene;
  });
  return content;
}

std::shared_ptr<HostedView> StageShow::makeModuleView(SkinState& state,
                                                      const ControlCenterLook& look) {
  return shown(std::make_shared<ModuleScene>(state, look, desktop_.appearance));
}

OnboardingContents StageShow::onboardingContents() {
  Appearance& appearance = desktop_.appearance;
  return {
      .makeSetup =
          [this, &appearance](SetupView& view) {
            return shown(std::make_shared<SetupScene>(view, appearance));
          },
      .makeHelper =
          [this, &appearance](HelperView& view) {
            return shown(std::make_shared<HelperScene>(view, appearance));
          },
      .makeCallout =
          [this, &appearance](CalloutView& view) {
            return shown(std::make_shared<CalloutScene>(view, appearance));
          },
      .makeRipple = [this,
                     &appearance] { return shown(std::make_shared<RippleScene>(appearance)); },
  };
}

std::shared_ptr<HostedView> StageShow::shown(std::shared_ptr<HostedView> scene) {
  return std::make_shared<StageContent>(std::move(scene), desktop_.clock, mainScale());
}

void StageShow::advance(double seconds) {
  settle();
  for (double left = seconds; left > 0; left -= frameTime) {
    desktop_.advance(std::min(left, frameTime));
    settle();
  }
}

void StageShow::tick() {
  icons_.update();
  if (sceneClock_) {
    sceneClock_->tick(desktop_.clock.mediaTime());
  }
  for (GlassWindow* window : windows_.onScreen()) {
    for (const auto& content : window->contents()) {
      content.view->layOut();
    }
  }
}

void StageShow::settle() {
  icons_.update();
  desktop_.settle();
  tick();
  QCoreApplication::sendPostedEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  desktop_.settle();
}

QImage StageShow::picture(int screen) {
  // Items that are made while others are laid out are laid out in the next turn.
  for (int turn = 0; turn < 3; ++turn) {
    compositor_.picture(screen);
    settle();
  }
  return compositor_.picture(screen);
}

std::vector<StageControl> StageShow::controls() {
  std::vector<StageControl> found;
  for (GlassWindow* window : windows_.onScreen()) {
    for (const auto& content : window->contents()) {
      content.view->layOut();
      if (content.alpha > 0.5) {
        const auto controls = content.view->controls();
        found.insert(found.end(), controls.begin(), controls.end());
      }
    }
  }
  return found;
}

}  // namespace plemora
