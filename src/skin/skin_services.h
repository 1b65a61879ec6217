#pragma once

#include <functional>
#include <memory>

namespace plemora {

class Accessibility;
class Clock;
class ControlCenterLocator;
class ControlCenterLook;
class ControlReload;
class DisplayLinks;
class Files;
class HostedView;
class InputEvents;
class MainQueue;
class Resources;
class Screens;
class SerialQueueFactory;
class UserDefaults;
class Windows;
class Workspace;
struct SkinState;

/// The world as the skin needs it. All of it outlives the skin.
struct SkinServices {
  MainQueue& mainQueue;
  SerialQueueFactory& queues;
  Clock& clock;
  DisplayLinks& displayLinks;
  Screens& screens;
  Windows& windows;
  InputEvents& inputEvents;
  Workspace& workspace;
  Accessibility& accessibility;
  ControlReload& controlReload;
  UserDefaults& defaults;
  Files& files;
  Resources& resources;
  const ControlCenterLook& look;
  const ControlCenterLocator& locator;
};

/// Makes the view of the module; it follows the state, which outlives it.
using MakeModuleView = std::function<std::shared_ptr<HostedView>(SkinState& state)>;

}  // namespace plemora
