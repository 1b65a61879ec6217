#include <algorithm>
#include <cmath>
#include <string_view>

#include "app/services/dock_presence.h"
#include "main/stage/scenario_scene.h"
#include "onboarding/onboarding_controller.h"

// Whether setup is as a scenario expects it.

namespace plemora {

namespace {

using Problem = std::optional<std::string>;

constexpr double placeSlack = 1;      // points
constexpr double helperGap = 12;      // between the helper and System Settings
constexpr double leastVisible = 0.5;  // alpha of a window that somebody sees

StageWindow* windowOf(std::string_view identifier, StageDesktop& desktop) {
  for (StageWindow* window : desktop.windows.visible()) {
    if (window->options.identifier == identifier && window->alpha() > leastVisible) {
      return window;
    }
  }
  return nullptr;
}

Problem checkShown(const std::string& what, std::optional<bool> expected, bool isShown) {
  if (!expected || *expected == isShown) {
    return std::nullopt;
  }
  return what + (isShown ? " is shown" : " is not shown");
}

Problem checkSetup(const SetupCondition& expected, const ScenarioScene& scene) {
  const bool isOpen = windowOf(DockPresence::windowID, scene.world.desktop) != nullptr;
  if (auto problem = checkShown("the setup window", expected.isOpen, isOpen)) {
    return problem;
  }
  AppDelegate* delegate = scene.program.delegate();
  OnboardingController* setup = delegate == nullptr ? nullptr : delegate->onboarding();
  if (setup == nullptr) {
    return expected.steps.empty() ? std::nullopt : Problem("the program does not run");
  }
  for (std::size_t i = 0; i < std::size(scenarioSetupSteps); ++i) {
    const auto wanted = expected.steps.find(std::string(scenarioSetupSteps[i]));
    const auto status = setup->state.status(static_cast<SetupStep>(i)).get();
    const std::string_view actual = scenarioStepStates[static_cast<std::size_t>(status)];
    if (wanted != expected.steps.end() && wanted->second != actual) {
      return "the step \"" + wanted->first + "\" is " + std::string(actual) + ", not " +
             wanted->second;
    }
  }
  return std::nullopt;
}

bool isNear(double a, double b) {
  return std::abs(a - b) <= placeSlack;
}

/// Which of scenarioHelperPlaces it is at; empty: none.
std::string_view placeOf(const Rect& helper, StageDesktop& desktop) {
  const auto windows = desktop.windowServer.records();
  const auto panel =
      std::ranges::find(windows, StageWindowKind::controlCenter, &StageWindowRecord::kind);
  if (panel != windows.end()) {
    return panel->frame.intersection(helper).isEmpty() ? scenarioHelperPlaces[4] : "";
  }
  if (!desktop.settings.isOpen()) {
    return "";
  }
  const Rect settings = desktop.settings.frame();
  if (isNear(helper.maxY(), settings.minY() - helperGap)) {
    return scenarioHelperPlaces[0];
  }
  if (isNear(helper.minX(), settings.maxX() + helperGap)) {
    return scenarioHelperPlaces[1];
  }
  if (isNear(helper.maxX(), settings.minX() - helperGap)) {
    return scenarioHelperPlaces[2];
  }
  return settings.intersection(helper).isEmpty() ? "" : scenarioHelperPlaces[3];
}

Problem checkHelper(const HelperCondition& expected, StageDesktop& desktop) {
  StageWindow* helper = windowOf("setup-helper", desktop);
  if (auto problem = checkShown("the helper", expected.isShown, helper != nullptr)) {
    return problem;
  }
  if (!expected.stands) {
    return std::nullopt;
  }
  if (helper == nullptr) {
    return "the helper is not shown";
  }
  const std::string_view place = placeOf(helper->frame(), desktop);
  if (place == *expected.stands) {
    return std::nullopt;
  }
  return "the helper stands " +
         (place.empty() ? std::string("beside nothing") : std::string(place)) + ", not " +
         *expected.stands;
}

std::string frontOf(StageDesktop& desktop) {
  const auto application =
      desktop.workspace.runningApplication(desktop.workspace.frontmost().get());
  return application ? application->localizedName.value_or("") : "";
}

}  // namespace

std::optional<std::string> unmetOfSetup(const ScenarioConditions& conditions,
                                        const ScenarioScene& scene) {
  StageDesktop& desktop = scene.world.desktop;
  if (conditions.setup) {
    if (auto problem = checkSetup(*conditions.setup, scene)) {
      return problem;
    }
  }
  if (conditions.helper) {
    if (auto problem = checkHelper(*conditions.helper, desktop)) {
      return problem;
    }
  }
  if (auto problem = checkShown("the pointer to the icon", conditions.hasPointer,
                                windowOf("menu-bar-callout", desktop) != nullptr)) {
    return problem;
  }
  if (conditions.front && frontOf(desktop) != *conditions.front) {
    return "in front is \"" + frontOf(desktop) + "\", not \"" + *conditions.front + "\"";
  }
  return std::nullopt;
}

}  // namespace plemora
