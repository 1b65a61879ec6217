#include "onboarding/helper_page.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace plemora {
namespace {

using Kind = HelperState::Kind;
using Placement = HelperState::Placement;
using Direction = HelperPage::Direction;

/// What is strong between stars, symbols in brackets.
std::string text(const HelperPage& page) {
  std::string result;
  for (const HelperRun& run : page.instructions) {
    const std::string words = run.symbol.empty() ? run.text : "[" + run.symbol + "]";
    result += run.isStrong ? "*" + words + "*" : words;
  }
  return result;
}

TEST(HelperPage, ReadsAsPlainEnglishInEveryState) {
  struct Case {
    Kind kind;
    std::function<void(HelperState&)> change;
    std::string text;
  };
  const auto asItComes = [](HelperState&) {};
  const auto on = [](Published<bool> HelperState::*flag) {
    return [flag](HelperState& state) { (state.*flag).set(true); };
  };
  const std::string uncheck = "Uncheck *Sound*";
  const std::string replaces = ", so Plemora's icon replaces Apple's.";
  const std::string edit =
      "emove Apple's *Sound*, drag Plemora's tile in twice side by side, and set both to *Medium*.";
  const std::vector<Case> cases = {
      {Kind::audioPermission, asItComes,
       "Drag *Plemora* into the list in System Settings above and turn it on there."},
      {Kind::audioPermission, on(&HelperState::isDragging),
       "Drop *Plemora* on the list in System Settings above."},
      {Kind::accessibility, on(&HelperState::awaitingApproval),
       "Allow *Plemora* when your Mac asks, and see that it is turned on in the list in System "
       "Settings above."},
      {Kind::accessibility, on(&HelperState::settingsMissing),
       "Open *System Settings* and choose *Privacy & Security*, then *Accessibility*. Drag "
       "*Plemora* into the list and turn it on there."},
      {Kind::hideSoundIcon, [](HelperState& state) { state.placement.set(Placement::left); },
       uncheck + " in System Settings on the right" + replaces},
      {Kind::hideSoundIcon, [](HelperState& state) { state.placement.set(Placement::right); },
       uncheck + " in System Settings on the left" + replaces},
      {Kind::hideSoundIcon, on(&HelperState::settingsMissing),
       "Open *System Settings* and choose *Menu Bar*. " + uncheck + replaces},
      {Kind::controlCenter, asItComes, "Click [switch.2] *Control Center* in the menu bar."},
      {Kind::controlCenter, on(&HelperState::controlCenterOpen),
       "Click *Edit Controls* at the bottom. R" + edit},
      {Kind::controlCenter,
       [](HelperState& state) {
         state.controlCenterOpen.set(true);
         state.controlCenterEditing.set(true);
       },
       "R" + edit},
      {Kind::controlCenter, on(&HelperState::succeeded), "Plemora is in Control Center."},
  };
  for (const Case& each : cases) {
    HelperState state;
    state.kind.set(each.kind);
    each.change(state);
    EXPECT_EQ(text(helperPage(state)), each.text);
  }
}

TEST(HelperPage, OffersWhatHelpsInEachState) {
  for (const Kind kind :
       {Kind::audioPermission, Kind::accessibility, Kind::controlCenter, Kind::hideSoundIcon}) {
    HelperState state;
    state.kind.set(kind);
    const bool hasList = kind == Kind::audioPermission || kind == Kind::accessibility;
    const bool isInSettings = kind != Kind::controlCenter;
    EXPECT_EQ(helperPage(state).askTitle,
              hasList ? "Can't drag? Ask with a system prompt instead" : "");
    EXPECT_EQ(helperPage(state).hasDragIcon, hasList);
    EXPECT_EQ(helperPage(state).doneTitle, "");
    state.controlCenterRetry.set(true);
    EXPECT_EQ(helperPage(state).doneTitle.empty(), isInSettings);
    state.awaitingApproval.set(true);
    EXPECT_EQ(helperPage(state).isBusy, hasList);
    state.isDragging.set(true);
    EXPECT_FALSE(helperPage(state).isBusy);
    EXPECT_EQ(helperPage(state).backTitle, "Cancel and go back to setup");
    state.succeeded.set(true);
    EXPECT_EQ(helperPage(state).backTitle, "");
  }
}

}  // namespace
}  // namespace plemora
