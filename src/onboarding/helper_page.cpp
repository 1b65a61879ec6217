#include "onboarding/helper_page.h"

#include <string>
#include <utility>
#include <vector>

namespace plemora {

namespace {

using Kind = HelperState::Kind;
using Direction = HelperPage::Direction;
using Runs = std::vector<HelperRun>;

HelperRun plain(std::string text) {
  return {std::move(text), false, {}};
}

HelperRun strong(std::string text) {
  return {std::move(text), true, {}};
}

/// Where System Settings stands, seen from a helper that stands there.
Direction directionOf(HelperState::Placement placement) {
  switch (placement) {
    case HelperState::Placement::left:
      return Direction::right;
    case HelperState::Placement::right:
      return Direction::left;
    case HelperState::Placement::under:
      break;
  }
  return Direction::above;
}

std::string inSettings(Direction direction) {
  const std::string place = direction == Direction::left    ? " on the left"
                            : direction == Direction::right ? " on the right"
                                                            : " above";
  return " in System Settings" + place;
}

/// The way to a pane for whom System Settings did not open by itself.
Runs wayTo(const Runs& panes) {
  Runs runs = {plain("Open "), strong("System Settings"), plain(" and choose ")};
  for (std::size_t index = 0; index < panes.size(); ++index) {
    runs.push_back(panes[index]);
    runs.push_back(plain(index + 1 < panes.size() ? ", then " : ". "));
  }
  return runs;
}

Runs operator+(Runs first, const Runs& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Runs way(const HelperState& state) {
  if (!state.settingsMissing.get()) {
    return {};
  }
  switch (state.kind.get()) {
    case Kind::audioPermission:
      return wayTo({strong("Privacy & Security"), strong("Screen & System Audio Recording")});
    case Kind::accessibility:
      return wayTo({strong("Privacy & Security"), strong("Accessibility")});
    case Kind::hideSoundIcon:
      return wayTo({strong("Menu Bar")});
    case Kind::controlCenter:
      break;
  }
  return {};
}

Runs listInstructions(const HelperState& state, const std::string& place) {
  if (state.isDragging.get()) {
    return {plain("Drop "), strong("Plemora"), plain(" on the list" + place + ".")};
  }
  if (state.awaitingApproval.get()) {
    return {plain("Allow "), strong("Plemora"),
            plain(" when your Mac asks, and see that it is turned on in the list" + place + ".")};
  }
  return {plain("Drag "), strong("Plemora"),
          plain(" into the list" + place + " and turn it on there.")};
}

std::string listNote(const HelperState& state) {
  if (state.isDragging.get() || state.awaitingApproval.get()) {
    return {};
  }
  return state.kind.get() == Kind::audioPermission
             ? "If there are two lists, use System Audio Recording Only."
             : "Is Plemora in the list already? Then just turn it on.";
}

Runs editing(const std::string& lead) {
  return {plain(lead + "Remove Apple's "), strong("Sound"),
          plain(", drag Plemora's tile in twice side by side, and set both to "), strong("Medium"),
          plain(".")};
}

Runs controlCenterInstructions(const HelperState& state) {
  if (state.controlCenterEditing.get()) {
    return editing("");
  }
  if (state.controlCenterOpen.get()) {
    return Runs{plain("Click "), strong("Edit Controls")} + editing(" at the bottom. ");
  }
  return {plain("Click "),
          {"", false, "switch.2"},
          plain(" "),
          strong("Control Center"),
          plain(" in the menu bar.")};
}

std::string controlCenterNote(const HelperState& state) {
  if (state.controlCenterEditing.get()) {
    return "Leave edit mode once both are in place.";
  }
  return state.controlCenterRetry.get()
             ? "Plemora's two tiles are not there yet. Try once more, or say that it is done."
             : "";
}

Runs successOf(Kind kind) {
  switch (kind) {
    case Kind::audioPermission:
      return {plain("Plemora has audio access.")};
    case Kind::accessibility:
      return {plain("Plemora is allowed in Control Center.")};
    case Kind::controlCenter:
      return {plain("Plemora is in Control Center.")};
    case Kind::hideSoundIcon:
      break;
  }
  return {plain("Plemora's icon has taken the place of Apple's.")};
}

}  // namespace

bool takesDraggedIcon(Kind kind) {
  return kind == Kind::audioPermission || kind == Kind::accessibility;
}

HelperPage helperPage(const HelperState& state) {
  const Kind kind = state.kind.get();
  HelperPage page;
  if (state.succeeded.get()) {
    page.instructions = successOf(kind);
    page.hasSucceeded = true;
    return page;
  }
  page.backTitle = "Cancel and go back to setup";
  if (kind == Kind::controlCenter) {
    page.instructions = controlCenterInstructions(state);
    page.note = controlCenterNote(state);
    page.doneTitle = state.controlCenterRetry.get() ? "It's done" : "";
    return page;
  }

  std::string place;
  if (!state.settingsMissing.get()) {
    page.direction = directionOf(state.placement.get());
    place = inSettings(page.direction);
  }
  if (kind == Kind::hideSoundIcon) {
    page.instructions = way(state) + Runs{plain("Uncheck "), strong("Sound"),
                                          plain(place + ", so Plemora's icon replaces Apple's.")};
    return page;
  }
  page.instructions = way(state) + listInstructions(state, place);
  page.note = listNote(state);
  page.hasDragIcon = true;
  page.isDragging = state.isDragging.get();
  page.isBusy = state.awaitingApproval.get() && !page.isDragging;
  page.askTitle = "Can't drag? Ask with a system prompt instead";
  return page;
}

}  // namespace plemora
