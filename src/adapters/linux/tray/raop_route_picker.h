#pragma once

#include <functional>
#include <memory>

#include "adapters/linux/tray/pop_up_menu.h"
#include "base/published.h"
#include "devices/output_devices.h"
#include "platform/main_queue.h"
#include "platform/route_picker.h"

namespace plemora {

/// The AirPlay (RAOP) receivers that the sound server finds on the network, as a small menu.
/// Choosing one makes it the default output. The search runs while the menu is open, and goes on
/// only while a receiver that it found is in use. Main thread.
class RaopRoutePicker : public RoutePicker {
 public:
  /// Makes the sound server look for receivers until the result is dropped; null when it cannot.
  using Discovery = std::function<std::shared_ptr<void>()>;

  /// Both references must outlive it.
  RaopRoutePicker(MainQueue& mainQueue, OutputDevices& devices, Discovery discovery);
  ~RaopRoutePicker() override;

  void present(const Rect& anchor, std::function<void()> didEnd) override;

 private:
  std::vector<PopUpMenuItem> items();
  void refresh();
  void choose(const OutputDevice& device);
  void ended();
  void defaultChanged();

  MainQueue& mainQueue_;
  OutputDevices& devices_;
  Discovery discovery_;
  std::shared_ptr<void> search_;  // while the menu is open or a receiver is in use
  std::string chosenUID_;         // the receiver that keeps the search alive
  bool wasDefault_ = false;       // the sound server has followed the choice
  bool hasWaited_ = false;        // long enough to say that there are none
  std::unique_ptr<PopUpMenu> menu_;
  std::function<void()> didEnd_;
  Timer patience_;
  std::vector<Subscription> subscriptions_;
};

/// A discovery that lets a helper process of PipeWire (pw-cli) load the RAOP discovery module; it
/// ends with the search, or with this program whatever ends it.
RaopRoutePicker::Discovery makeRaopDiscovery();

}  // namespace plemora
