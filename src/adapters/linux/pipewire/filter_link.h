#pragma once

#include <pipewire/pipewire.h>

#include <cstdint>
#include <functional>

#include "adapters/linux/pipewire/remote_object.h"

namespace plemora {

/// One link between two ports, made by this program and gone with this object. Passive: it keeps
/// no device from suspending. Made and destroyed with the loop's lock held.
class FilterLink {
 public:
  /// Ports and nodes by their global ids. The callback runs after each change of the state.
  FilterLink(pw_core* core, std::uint32_t outputNode, std::uint32_t outputPort,
             std::uint32_t inputNode, std::uint32_t inputPort, std::function<void()> changed);
  FilterLink(const FilterLink&) = delete;
  FilterLink& operator=(const FilterLink&) = delete;

  /// Both ends have agreed on buffers: samples pass as soon as both nodes run.
  bool isPrepared() const { return state_ >= PW_LINK_STATE_PAUSED; }
  /// Samples pass.
  bool isActive() const { return state_ == PW_LINK_STATE_ACTIVE; }
  /// The server has refused or removed it.
  bool isGone() const { return gone_; }

 private:
  std::function<void()> changed_;
  pw_link_state state_ = PW_LINK_STATE_INIT;
  bool gone_ = false;
  OwnedProxy proxy_;
  Hook proxyHook_;
  Hook linkHook_;
};

}  // namespace plemora
