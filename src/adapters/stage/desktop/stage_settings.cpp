#include "adapters/stage/desktop/stage_settings.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/stage/desktop/stage_accessibility.h"
#include "adapters/stage/desktop/stage_control_center.h"
#include "adapters/stage/desktop/stage_outputs.h"
#include "adapters/stage/desktop/stage_program.h"
#include "adapters/stage/desktop/stage_workspace.h"
#include "adapters/stage/scripted_consent.h"
#include "adapters/stage/simulated_hal.h"
#include "platform/preferences.h"
#include "platform/screens.h"

namespace plemora {

namespace {

constexpr std::string_view scheme = "x-apple.systempreferences:";
constexpr const char* soundIconKey = "NSStatusItem VisibleCC Sound";

struct PaneFacts {
  StageSettings::Pane pane;
  std::string_view link;  ///< what follows the scheme
  const char* title;
};

constexpr std::array<PaneFacts, 5> panes{{
    {StageSettings::Pane::general, "", "General"},
    {StageSettings::Pane::audioCapture, "com.apple.preference.security?Privacy_ScreenCapture",
     "Screen & System Audio Recording"},
    {StageSettings::Pane::accessibility, "com.apple.preference.security?Privacy_Accessibility",
     "Accessibility"},
    {StageSettings::Pane::menuBar, "com.apple.ControlCenter-Settings.extension", "Menu Bar"},
    {StageSettings::Pane::sound, "com.apple.Sound-Settings.extension", "Sound"},
}};

}  // namespace

bool StageSettings::openURL(const std::string& url) {
  if (!std::string_view(url).starts_with(scheme)) {
    return false;
  }
  const std::string_view link = std::string_view(url).substr(scheme.size());
  const auto* found = std::ranges::find(panes, link, &PaneFacts::link);
  show(found == panes.end() ? Pane::general : found->pane);
  return true;
}

void StageSettings::show(Pane pane) {
  pane_ = pane;
  if (!isOpen()) {
    pid_ = services_.workspace.start({.pid = -1,
                                      .bundleID = bundleID,
                                      .localizedName = processName,
                                      .icon = {"preferences-system"},
                                      .activationPolicy = ActivationPolicy::regular});
    services_.workspace.onTerminated(pid_, [this] { ended(); });
    number_ = services_.numbers.next();
    const auto& screens = services_.screens.screens().get();
    if (!wasPlaced_ && !screens.empty()) {
      const Rect& visible = screens[0].visibleFrame;
      frame_.x = visible.midX() - frame_.width / 2;
      frame_.y = visible.maxY() - 40 - frame_.height;
      wasPlaced_ = true;
    }
  }
  bringForward();
}

void StageSettings::bringForward() {
  order_ = services_.numbers.next();
  services_.workspace.activate(pid_);
}

void StageSettings::close() {
  if (isOpen()) {
    services_.workspace.exit(pid_);
    ended();
  }
}

void StageSettings::ended() {
  pid_ = -1;
  grip_.reset();
}

void StageSettings::move(const Point& origin) {
  frame_.x = origin.x;
  frame_.y = origin.y;
}

std::string StageSettings::title() const {
  return std::ranges::find(panes, pane_, &PaneFacts::pane)->title;
}

std::vector<StageSettings::Row> StageSettings::rows() const {
  const std::string& program = services_.program.name();
  switch (pane_) {
    case Pane::audioCapture:
      return {{program, services_.consent.answer() == 0}};
    case Pane::accessibility:
      return {{program, services_.accessibility.isTrusted()}};
    case Pane::menuBar: {
      const auto value = services_.preferences.appValue(soundIconKey, StageControlCenter::bundleID);
      const auto* isShown = value ? std::get_if<bool>(&*value) : nullptr;
      return {{"Sound", isShown == nullptr || *isShown}};
    }
    case Pane::sound: {
      std::vector<Row> rows;
      for (const AudioObjectID id : stageOutputs(services_.hal)) {
        rows.push_back(
            {services_.hal.device(id).name.value_or(""), id == services_.hal.defaultOutput()});
      }
      return rows;
    }
    case Pane::general:
      break;
  }
  return {};
}

bool StageSettings::setRow(const std::string& title, bool isOn) {
  const auto all = rows();
  const auto row = std::ranges::find(all, title, &Row::title);
  if (!isOpen() || row == all.end()) {
    return false;
  }
  switch (pane_) {
    case Pane::audioCapture:
      services_.consent.decide(isOn);
      break;
    case Pane::accessibility:
      services_.accessibility.setTrusted(isOn);
      break;
    case Pane::menuBar:
      services_.preferences.setValue(soundIconKey, isOn, StageControlCenter::bundleID,
                                     PreferenceHost::any);
      services_.preferences.synchronize(StageControlCenter::bundleID, PreferenceHost::any);
      services_.controlCenter.followIconPreferences();
      break;
    case Pane::sound:
      services_.hal.setDefaultOutput(
          stageOutputs(services_.hal)[static_cast<std::size_t>(row - all.begin())]);
      break;
    case Pane::general:
      break;
  }
  return true;
}

bool StageSettings::drop(const std::string& path) {
  const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
  return (pane_ == Pane::audioCapture || pane_ == Pane::accessibility) &&
         setRow(std::string(name.substr(0, name.rfind(".app"))), true);
}

Rect StageSettings::closeButton() const {
  return {frame_.minX() + 19, frame_.maxY() - 33, 14, 14};
}

Rect StageSettings::rowFrame(std::size_t index) const {
  const double left = frame_.minX() + sidebarWidth + 20;
  return {left, frame_.maxY() - titleBarHeight - 16 - static_cast<double>(index + 1) * rowHeight,
          frame_.maxX() - 20 - left, rowHeight};
}

void StageSettings::appendWindows(std::vector<StageWindowRecord>& windows) {
  if (isOpen() && !services_.screens.screens().get().empty()) {
    windows.push_back({.kind = StageWindowKind::settings,
                       .number = number_,
                       .order = order_,
                       .ownerPid = pid_,
                       .ownerName = processName,
                       .frame = frame_,
                       .solid = frame_});
  }
}

void StageSettings::pointer(const StageWindowRecord& /*window*/, const StagePointerEvent& event) {
  switch (event.phase) {
    case StagePointerEvent::Phase::pressed:
      bringForward();
      pressed(event.location);
      break;
    case StagePointerEvent::Phase::dragged:
      if (grip_) {
        move({event.location.x - grip_->x, event.location.y - grip_->y});
      }
      break;
    case StagePointerEvent::Phase::released:
      grip_.reset();
      break;
    default:
      break;
  }
}

void StageSettings::pressed(const Point& location) {
  if (closeButton().contains(location)) {
    close();
    return;
  }
  if (location.y > frame_.maxY() - titleBarHeight) {
    grip_ = Point{location.x - frame_.x, location.y - frame_.y};
    return;
  }
  const auto all = rows();
  for (std::size_t index = 0; index < all.size(); ++index) {
    if (rowFrame(index).contains(location)) {
      setRow(all[index].title, !all[index].isOn);
    }
  }
}

}  // namespace plemora
